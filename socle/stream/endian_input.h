#pragma once

#include "socle/basic/internal/byte_order.h"
#include "socle/stream/direct_input.h"

namespace stream {

/// Reads whole integers in a stated byte order.
///
/// The end of the stream throws nothing. `read8` then returns 0xFF. Each missing byte of a value sets every bit from
/// its place upward, in the 32-bit word it belongs to; bits 31 to 24 of what `read24` returns are 0 all the same where
/// the order is the host's. A reader that must not run past the end wraps a `stream::safe_input`.
class SOCLE_API endian_input : public direct_input {
public:
    /// Wraps `stream`, which has to outlive it.
    explicit endian_input(input & stream);
    template <derived_filter<endian_input> Stream>
    explicit endian_input(Stream & stream) : endian_input(static_cast<input &>(stream)) {}
    endian_input(endian_input const &) = default;
    endian_input & operator=(endian_input const &) = default;
    ~endian_input() override;

    /// Reads an integer of one byte.
    virtual unsigned char read8();
    /// Reads an integer of two bytes.
    virtual uint16 read16() = 0;
    /// Reads an integer of three bytes, in bits 23 to 0.
    virtual uint32 read24() = 0;
    /// Reads an integer of four bytes.
    virtual uint32 read32() = 0;
    /// Reads an integer of eight bytes.
    virtual uint64 read64() = 0;

protected:
    /// Whether this machine keeps the high byte first.
    bool host_big_endian() const noexcept { return host_big_endian_; }

    // The value that comes next: at once if its bytes lie open in memory beneath an object of just one of the two
    // classes below, where nobody can have overridden how they are read.
    template <class Value>
    Value next(bool big) {
        if (char const * const at = own_.known && underlying() ? open_bytes(*underlying(), sizeof(Value)) : nullptr)
            return basic::load<Value>(at, big);
        return static_cast<Value>(read_on(sizeof(Value), big));
    }
    uint64 read_on(uint32 width, bool big);

private:
    // Whether the dynamic type has been found to be such a class. A copy may be part of another.
    struct own {
        own() = default;
        own(own const &) {}
        own & operator=(own const &) { return *this; }
        ~own() = default;

        bool known = false;
    };

    bool host_big_endian_;
    own own_;
};

/// The high byte comes first.
class SOCLE_API big_endian_input : public endian_input {
public:
    /// Wraps `stream`, which has to outlive it.
    explicit big_endian_input(input & stream);
    template <derived_filter<big_endian_input> Stream>
    explicit big_endian_input(Stream & stream) : big_endian_input(static_cast<input &>(stream)) {}
    big_endian_input(big_endian_input const &) = default;
    big_endian_input & operator=(big_endian_input const &) = default;
    ~big_endian_input() override;

    /// @{
    /// Reads an integer, the high byte first.
    SOCLE_INLINE_API uint16 read16() override { return next<uint16>(true); }
    uint32 read24() override;
    SOCLE_INLINE_API uint32 read32() override { return next<uint32>(true); }
    SOCLE_INLINE_API uint64 read64() override { return next<uint64>(true); }
    /// @}

private:
    bool _ours() const override;
};

/// The low byte comes first.
class SOCLE_API little_endian_input : public endian_input {
public:
    /// Wraps `stream`, which has to outlive it.
    explicit little_endian_input(input & stream);
    template <derived_filter<little_endian_input> Stream>
    explicit little_endian_input(Stream & stream) : little_endian_input(static_cast<input &>(stream)) {}
    little_endian_input(little_endian_input const &) = default;
    little_endian_input & operator=(little_endian_input const &) = default;
    ~little_endian_input() override;

    /// @{
    /// Reads an integer, the low byte first.
    SOCLE_INLINE_API uint16 read16() override { return next<uint16>(false); }
    uint32 read24() override;
    SOCLE_INLINE_API uint32 read32() override { return next<uint32>(false); }
    SOCLE_INLINE_API uint64 read64() override { return next<uint64>(false); }
    /// @}

private:
    bool _ours() const override;
};

} // namespace stream
