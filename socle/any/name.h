#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

#include <cstddef>
#include <iterator>

namespace any {

/// A name as 16-bit text, set and read in many encodings, with the unit that separates its fragments. Only the 16-bit
/// text is stored. Failures are `any::exception`s from "any::name".
class SOCLE_API name {
public:
    class fragment_iterator;

    /// The separator of fragments unless another unit is given.
    static constexpr char16_t default_separator = u'\\';
    /// The empty name with the default separator.
    static name const null;

    /// The empty name.
    explicit name(char16_t separator = default_separator) : separator_(separator) {}
    name(name const &) = default;
    /// The same fragments and separator.
    name const & operator=(name const & other);
    ~name() = default;

    /// The same fragments and separator.
    void set(name const & other);

    /// Replaces the text and keeps the separator.
    void set_ucs2(wide_string const & text) { value_ = text; }
    /// Replaces the text by one in the form of `any::utf8_coder`.
    void set_utf8(narrow_string const & text);
    /// Replaces the text by one in the ANSI page. Throws "cannot convert to Unicode", with the name then empty.
    void set_ansi(narrow_string const & text);
    /// Replaces the text by one in the OEM page. Throws "cannot convert to Unicode", with the name then empty.
    void set_oem(narrow_string const & text);
    /// As `set_ansi`; `text` is a byte with the length, and then that many bytes.
    void set_pstr(unsigned char const * text);

    /// The text as it stands, with the separators, dots and zero units that are no part of a fragment.
    wide_string get_ucs2() const { return value_; }
    /// The text in the form of `any::utf8_coder`.
    narrow_string get_utf8() const;
    /// The text in the ANSI page, or in another one, as `any::converter` says. Throws "cannot convert from Unicode" for
    /// a text that no installed page holds.
    narrow_string get_ansi() const;
    /// The text in the OEM page, with the same exception.
    narrow_string get_oem() const;

    /// The first fragment. Fragments are the pieces between separators, without those that are exactly "." and the
    /// empty ones at the end; the first piece is always a fragment.
    fragment_iterator fragment_begin() const;
    /// The end, behind the last fragment.
    fragment_iterator fragment_end() const;
    /// The number of fragments.
    uint32 fragment_size() const;
    /// The last fragment; empty if there is none.
    wide_string leaf() const;

    /// Appends a separator, unless the text ends in one, and a fragment. An empty `leaf` changes nothing. Throws
    /// `std::out_of_range` if the name is empty.
    void add_leaf(wide_string const & leaf);

private:
    wide_string value_;
    char16_t separator_;
};

/// Goes through the fragments of a name as it was when the iterator was made.
class SOCLE_API name::fragment_iterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = wide_string;
    using difference_type = std::int32_t;
    using pointer = wide_string *;
    using reference = wide_string &;

    /// The end of any name.
    fragment_iterator() = default;
    /// The first fragment of `owner`.
    explicit fragment_iterator(name const & owner);

    /// @{
    /// The current fragment, which the caller may change; empty at the end.
    wide_string & operator*() const { return fragment_; }
    wide_string * operator->() const { return &fragment_; }
    /// @}
    /// Goes to the next fragment; at the end it stays there.
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
