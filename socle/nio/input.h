#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

#include <span>

namespace nio {

/// The root of every byte source.
///
/// Positions and sizes are 64-bit and count bytes from the start of the stream; a count that describes one buffer in
/// memory is 32-bit. A source belongs to one thread at a time. Copying copies the position, not the bytes.
class SOCLE_API input {
public:
    input() = default;
    input(input const &) = default;
    input & operator=(input const &) = default;
    virtual ~input();

    /// A hook for the user of the stream to call before use. Does nothing by default.
    virtual void begin();
    /// A hook for the user of the stream to call after use. Does nothing by default.
    virtual void end();

    /// Reads up to `count` bytes into `buffer` and returns how many came.
    /// - A result of 0 for a `count` above 0 is the end of the stream.
    /// - A result below `count` means the end was met, where the class does not say otherwise.
    /// - The result is never above `count`.
    virtual uint32 read(char * buffer, uint32 count) = 0;
    /// @{
    /// Fills `block`, of any size, through the form above, and returns the number of bytes read.
    uint64 read(std::span<char> block);
    uint64 read(std::span<unsigned char> block);
    /// @}

    /// The position of the next byte; by default the value last given to `position()`, 0 at first.
    virtual uint64 tell() const;

    /// Moves to `where`. False means that nothing has moved, which is the default.
    virtual bool seek(uint64 where);

    /// The length of the whole stream, not of what remains. All ones, the default, means that it is not known.
    virtual uint64 size() const;

protected:
    /// The position that `tell()` returns by default.
    uint64 position() const noexcept { return position_; }
    void position(uint64 where) noexcept { position_ = where; }

private:
    friend struct lending;

    // How a fast path of the library reaches bytes that a stream of the library already holds. A caller's own class
    // keeps these as they are, and so is always asked through the operations above.
    virtual bool _ours() const;
    virtual std::span<char const> _lend();
    virtual void _take(uint64 count);

    uint64 position_ = 0;
};

/// A source of the same byte, without end.
class SOCLE_API infinite_input : public input {
public:
    /// A source of `fill`.
    explicit infinite_input(char fill);
    ~infinite_input() override;

    using input::read;

    /// Always fills the whole of `buffer`.
    uint32 read(char * buffer, uint32 size) override;
    /// Always true.
    bool seek(uint64 where) override;

private:
    char fill_;
};

} // namespace nio
