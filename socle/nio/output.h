#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

#include <span>
#include <string_view>

namespace nio {

/// The root of every byte sink.
///
/// Positions and sizes are 64-bit and count bytes from the start of the stream; a count that describes one buffer in
/// memory is 32-bit. A sink belongs to one thread at a time. Copying copies the position, not the bytes.
class SOCLE_API output {
public:
    output() = default;
    output(output const &) = default;
    output & operator=(output const &) = default;
    virtual ~output();

    /// A hook for the user of the stream to call before use. Does nothing by default.
    virtual void begin();
    /// A hook for the user of the stream to call after use. Does nothing by default.
    virtual void end();

    /// Writes all `count` bytes of `data` or throws.
    virtual void write(char const * data, uint32 count) = 0;
    /// Writes one byte, by default through the block form.
    virtual void write(unsigned char byte);
    /// @{
    /// Writes a text or block of any size through the block form.
    void write(std::string_view block);
    void write(std::span<unsigned char const> block);
    /// @}

    /// Pushes bytes that this object holds back one layer down. Does nothing by default.
    virtual void flush();

    /// The position of the next byte; by default the value last given to `position()`, 0 at first.
    virtual uint64 tell() const;

    /// Moves to `where`. False means that nothing has moved, which is the default.
    virtual bool seek(uint64 where);

    /// The length of the stream, by default its position.
    virtual uint64 size() const;

protected:
    /// The position that `tell()` returns by default.
    uint64 position() const noexcept { return position_; }
    void position(uint64 where) noexcept { position_ = where; }

private:
    friend struct lending;

    // How a fast path of the library reaches the room that a stream of the library has. A caller's own class keeps
    // these as they are, and so is always asked through the operations above.
    virtual bool _ours() const;
    virtual std::span<char> _room();
    virtual void _use(uint64 count);
    virtual bool _apart(std::span<char const> data) const;

    uint64 position_ = 0;
};

/// A sink that drops what is written to it and counts the bytes.
class SOCLE_API infinite_output : public output {
public:
    infinite_output() = default;
    ~infinite_output() override;

    using output::write;
    /// Counts `size` bytes.
    void write(char const * data, uint32 size) override;
    /// Always true.
    bool seek(uint64 where) override;

private:
    bool _apart(std::span<char const> data) const override;
};

} // namespace nio
