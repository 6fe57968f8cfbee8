#include "socle/stream/filter_output.h"

#include "socle/nio/lending_internal.h"

#include <typeinfo>

namespace stream {

filter_output::filter_output(output & stream) : underlying_(&stream) {}

filter_output::~filter_output() = default;

void filter_output::write(char const * data, uint32 count) { beneath().write(data, count); }

uint64 filter_output::tell() const { return underlying_ ? underlying_->tell() : 0; }

void filter_output::write(narrow_string const & text) { beneath().write(text); }

void filter_output::write(char byte) { beneath().write(byte); }

void filter_output::copy_from(input & source) { beneath().copy_from(source); }

void filter_output::resize(uint64 new_size) { beneath().resize(new_size); }

void filter_output::flush_through() {
    flush();
    if (underlying_)
        underlying_->flush_through();
}

void filter_output::close() {
    flush();
    if (underlying_)
        underlying_->close();
}

void filter_output::under(output & stream) { underlying_ = &stream; }

output & filter_output::under() { return beneath(); }

output & filter_output::beneath() const {
    if (!underlying_)
        throw exception("there is no stream beneath", "stream::filter_output");
    return *underlying_;
}

bool filter_output::_apart(std::span<char const> data) const {
    return _ours() && underlying_ && nio::lending::apart(*underlying_, data);
}

bool filter_output::_ours() const { return typeid(*this) == typeid(filter_output); }

} // namespace stream
