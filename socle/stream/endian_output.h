#pragma once

#include "socle/basic/internal/byte_order.h"
#include "socle/stream/filter_output.h"

namespace stream {

/// Writes whole integers in a stated byte order, straight to the underlying stream.
class SOCLE_API endian_output : public filter_output {
public:
    /// Wraps `stream`, which has to outlive it.
    explicit endian_output(output & stream);
    template <derived_filter<endian_output> Stream>
    explicit endian_output(Stream & stream) : endian_output(static_cast<output &>(stream)) {}
    endian_output(endian_output const &) = default;
    endian_output & operator=(endian_output const &) = default;
    ~endian_output() override;

    /// Writes an integer of one byte.
    virtual void write8(unsigned char value);
    /// Writes an integer of two bytes.
    virtual void write16(uint16 value) = 0;
    /// Writes three bytes, bits 23 to 0; the others are ignored.
    virtual void write24(uint32 value) = 0;
    /// Writes an integer of four bytes.
    virtual void write32(uint32 value) = 0;
    /// Writes an integer of eight bytes.
    virtual void write64(uint64 value) = 0;

protected:
    /// Whether this machine keeps the high byte first.
    bool host_big_endian() const noexcept { return host_big_endian_; }

    // Writes a value at once if there is room for it open in memory beneath.
    template <class Value>
    void put(Value value, bool big) {
        if (char * const at = underlying() ? open_room(*underlying(), sizeof value) : nullptr)
            basic::store(at, value, big);
        else
            write_on(value, sizeof value, big);
    }
    void write_on(uint64 value, uint32 width, bool big);

private:
    bool host_big_endian_;
};

/// The high byte goes first.
class SOCLE_API big_endian_output : public endian_output {
public:
    /// Wraps `stream`, which has to outlive it.
    explicit big_endian_output(output & stream);
    template <derived_filter<big_endian_output> Stream>
    explicit big_endian_output(Stream & stream) : big_endian_output(static_cast<output &>(stream)) {}
    big_endian_output(big_endian_output const &) = default;
    big_endian_output & operator=(big_endian_output const &) = default;
    ~big_endian_output() override;

    /// @{
    /// Writes an integer, the high byte first.
    SOCLE_INLINE_API void write16(uint16 value) override { put(value, true); }
    void write24(uint32 value) override;
    SOCLE_INLINE_API void write32(uint32 value) override { put(value, true); }
    SOCLE_INLINE_API void write64(uint64 value) override { put(value, true); }
    /// @}

private:
    bool _ours() const override;
};

/// The low byte goes first.
class SOCLE_API little_endian_output : public endian_output {
public:
    /// Wraps `stream`, which has to outlive it.
    explicit little_endian_output(output & stream);
    template <derived_filter<little_endian_output> Stream>
    explicit little_endian_output(Stream & stream) : little_endian_output(static_cast<output &>(stream)) {}
    little_endian_output(little_endian_output const &) = default;
    little_endian_output & operator=(little_endian_output const &) = default;
    ~little_endian_output() override;

    /// @{
    /// Writes an integer, the low byte first.
    SOCLE_INLINE_API void write16(uint16 value) override { put(value, false); }
    void write24(uint32 value) override;
    SOCLE_INLINE_API void write32(uint32 value) override { put(value, false); }
    SOCLE_INLINE_API void write64(uint64 value) override { put(value, false); }
    /// @}

private:
    bool _ours() const override;
};

} // namespace stream
