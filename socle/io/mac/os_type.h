#pragma once

#include "socle/un/structure.h"

#include <compare>

/// Records of the classic Macintosh file system, big-endian in their stored form.
namespace io::mac {

/// A code of four characters, such as a file's type: stored as four bytes, the first character first.
class SOCLE_API os_type : public un::structure {
public:
    /// Takes the first four characters; those that a shorter text lacks are 0.
    os_type(char const * text = "????");
    os_type(narrow_string const & text);
    /// Takes the code as a number.
    os_type(uint32 number);
    /// Takes the same bits, so that a plain 0 is a number and not a null pointer.
    os_type(int number);
    os_type(os_type const &) = default;
    os_type & operator=(os_type const &) = default;
    ~os_type() override;

    /// @{
    /// Compares the four characters, in order, with case. Text and numbers are taken as by the constructors, so that of
    /// a longer text only the first four characters count.
    friend bool operator==(os_type const & a, os_type const & b) noexcept { return a.value == b.value; }
    friend std::strong_ordering operator<=>(os_type const & a, os_type const & b) noexcept {
        return a.value <=> b.value;
    }
    /// @}

    /// The four characters, which may be 0.
    narrow_string to_string() const;
    /// Takes the first four characters, as the constructor does.
    void from_string(narrow_string const & text);

    /// Reads the code and returns 4. A byte that the stream lacks is 0xFF; with `strict` it throws instead: an
    /// `io::exception` with "stream is too short" and the origin "io::mac::os_type". `value` then stays, and what came
    /// is consumed.
    uint32 read(stream::input & input, bool strict) override;
    /// Writes the stored form and returns its length.
    uint32 write(stream::output & output) const override;
    /// The stored length.
    uint32 size() const override;
    /// The stored length.
    static constexpr uint32 fixed_size() { return 4; }

    /// The first character in the most significant byte.
    uint32 value;
};

} // namespace io::mac
