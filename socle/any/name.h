#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

#include <cstddef>
#include <iterator>

namespace any {

/// A name as 16-bit text, filled from and read in many encodings, with the unit that stands between its fragments. The
/// 16-bit text is all that is held. Failures are `any::exception`s from "any::name".
class SOCLE_API name {
public:
    class fragment_iterator;

    /// Stands between fragments unless another unit is given.
    static constexpr char16_t default_separator = u'\\';
    /// The empty name with the default separator.
    static name const null;

    /// Without fragments.
    explicit name(char16_t separator = default_separator) : separator_(separator) {}
    name(name const &) = default;
    /// The same fragments and separator.
    name const & operator=(name const & other);
    ~name() = default;

    /// The same fragments and separator.
    void set(name const & other);

    /// Each replaces the text and leaves the separator. Those through a code page throw "cannot convert to Unicode",
    /// with the name then empty.
    void set_ucs2(wide_string const & text) { value_ = text; }
    /// In the form of `any::utf8_coder`.
    void set_utf8(narrow_string const & text);
    void set_ansi(narrow_string const & text);
    void set_oem(narrow_string const & text);
    /// `text` is a byte with the length, and then that many bytes in the ANSI page.
    void set_pstr(unsigned char const * text);

    /// All fragments, joined by the separator.
    wide_string get_ucs2() const { return value_; }
    narrow_string get_utf8() const;
    /// Both throw "cannot convert from Unicode" for a text that no installed page holds; else the result may be in
    /// another page, as told at `any::converter`.
    narrow_string get_ansi() const;
    narrow_string get_oem() const;

    /// The pieces between separators, save each that is exactly "." and the empty ones at the end; but the first one
    /// stands, empty or not.
    fragment_iterator fragment_begin() const;
    fragment_iterator fragment_end() const;
    uint32 fragment_size() const;
    /// The last fragment; empty if there is none.
    wide_string leaf() const;

    /// Adds a fragment behind a separator, which is not doubled. An empty `leaf` changes nothing. Throws
    /// `std::out_of_range` if the name is empty.
    void add_leaf(wide_string const & leaf);

private:
    wide_string value_;
    char16_t separator_;
};

/// Walks over the fragments of a name as it was when the iterator was made.
class SOCLE_API name::fragment_iterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = wide_string;
    using difference_type = std::int32_t;
    using pointer = wide_string *;
    using reference = wide_string &;

    /// The end of any name.
    fragment_iterator() = default;
    explicit fragment_iterator(name const & owner);

    /// The current fragment, which the caller may change; empty at the end.
    wide_string & operator*() const { return fragment_; }
    wide_string * operator->() const { return &fragment_; }
    /// At the end it stays there.
    fragment_iterator & operator++();
    fragment_iterator operator++(int);

    /// At the same fragment of the same name, or both at the end.
    bool operator==(fragment_iterator const & other) const;

private:
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    struct piece {
        std::size_t start, size;
    };

    void parse();
    void show();

    name const * owner_ = &null;
    wide_string value_;
    std::vector<piece> pieces_;
    std::size_t index_ = npos;
    mutable wide_string fragment_;
};

} // namespace any
