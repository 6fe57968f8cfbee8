#pragma once

#include "socle/stream/direct_input.h"

namespace stream {

/// Turns the quiet end of a source into an exception: a read or skip that gets less than it asks for throws
/// "unexpected end of file". What came by then is in the caller's buffer and consumed. So `copy_to` always throws in
/// the end, and what came of its last block of 65536 bytes is lost: neither in the target nor left to be read.
class SOCLE_API safe_input : public direct_input {
public:
    /// Wraps `stream`, which has to outlive it.
    explicit safe_input(input & stream);
    template <derived_filter<safe_input> Stream>
    explicit safe_input(Stream & stream) : safe_input(static_cast<input &>(stream)) {}
    safe_input(safe_input const &) = default;
    safe_input & operator=(safe_input const &) = default;
    ~safe_input() override;

protected:
    /// @{
    /// Forwards to the underlying stream, and throws "unexpected end of file" if less came than asked for.
    uint32 _read(char * buffer, uint32 count) override;
    int _read() override;
    uint64 _skip(uint64 count) override;
    /// @}
};

} // namespace stream
