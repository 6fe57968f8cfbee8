#include "socle/any/name.h"

#include "socle/any/exception.h"
#include "socle/any/system_pages_internal.h"
#include "socle/any/utf8_coder.h"

#include <algorithm>

namespace any {

namespace {

constexpr char const * origin = "any::name";

narrow_string encode(wide_string const & text, bool ansi) {
    narrow_string result;
    if (!system_pages().from_unicode(text, result, ansi))
        throw exception("cannot convert from Unicode", origin);
    return result;
}

} // namespace

name const & name::operator=(name const & other) {
    set(other);
    return *this;
}

void name::set(name const & other) {
    value_ = other.value_;
    separator_ = other.separator_;
}

void name::set_utf8(narrow_string const & text) { utf8_coder::decode(text, value_); }

void name::set_ansi(narrow_string const & text) { decode(text, value_, true, origin); }

void name::set_oem(narrow_string const & text) { decode(text, value_, false, origin); }

void name::set_pstr(unsigned char const * text) { set_ansi(narrow_string(text + 1, text + 1 + *text)); }

narrow_string name::get_utf8() const { return utf8_coder::encode(value_); }

narrow_string name::get_ansi() const { return encode(value_, true); }

narrow_string name::get_oem() const { return encode(value_, false); }

name::fragment_iterator name::fragment_begin() const { return fragment_iterator(*this); }

name::fragment_iterator name::fragment_end() const { return {}; }

uint32 name::fragment_size() const {
    uint32 count = 0;
    for (auto it = fragment_begin(); it != fragment_end(); ++it)
        ++count;
    return count;
}

wide_string name::leaf() const {
    wide_string last;
    for (auto it = fragment_begin(); it != fragment_end(); ++it)
        last = *it;
    return last;
}

void name::add_leaf(wide_string const & leaf) {
    if (leaf.empty())
        return;
    if (value_.at(value_.size() - 1) != separator_)
        value_ += separator_;
    value_ += leaf;
}

name::fragment_iterator::fragment_iterator(name const & owner) : owner_(&owner), value_(owner.value_), index_(0) {
    parse();
    show();
}

void name::fragment_iterator::parse() {
    for (std::size_t start = 0; start <= value_.size() && !value_.empty();) {
        std::size_t const end = std::min(value_.find(owner_->separator_, start), value_.size());
        if (end - start != 1 || value_[start] != u'.')
            pieces_.push_back({start, end - start});
        start = end + 1;
    }
    while (pieces_.size() > 1 && pieces_.back().size == 0)
        pieces_.pop_back();
}

/// Brings the current fragment forth, or the end.
void name::fragment_iterator::show() {
    if (index_ < pieces_.size()) {
        fragment_.assign(value_, pieces_[index_].start, pieces_[index_].size);
    } else {
        index_ = npos;
        fragment_.clear();
    }
}

name::fragment_iterator & name::fragment_iterator::operator++() {
    if (index_ != npos)
        ++index_;
    show();
    return *this;
}

name::fragment_iterator name::fragment_iterator::operator++(int) {
    fragment_iterator before = *this;
    ++*this;
    return before;
}

bool name::fragment_iterator::operator==(fragment_iterator const & other) const {
    return index_ == other.index_ && (owner_ == other.owner_ || index_ == npos);
}

} // namespace any
