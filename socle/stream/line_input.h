#pragma once

#include "socle/stream/direct_input.h"

namespace stream {

/// Cuts a byte stream into lines. It should wrap a buffered stream.
///
/// A carriage return or a line feed ends a line, and is read with it; what follows stays in the stream. Those that come
/// before the first other byte are skipped, so that CR LF ends one line and empty lines vanish. At the end of the
/// stream a line that has begun is a line. All other bytes are kept as they are, zero bytes too.
class SOCLE_API line_input : public direct_input {
public:
    /// Wraps `stream`, which has to outlive it.
    explicit line_input(input & stream);
    template <derived_filter<line_input> Stream>
    explicit line_input(Stream & stream) : line_input(static_cast<input &>(stream)) {}
    line_input(line_input const &) = default;
    line_input & operator=(line_input const &) = default;
    ~line_input() override;

    /// Reads a line of at most `size` - 1 bytes into `buffer` and ends it with a zero byte; the rest of a longer one
    /// comes as a line of its own. Returns the length, or 0xFFFFFFFF at the end of the stream. With null or a size of 0
    /// it returns 0 and reads nothing; with a size of 1 it returns 0 and an empty text.
    uint32 read_line(char * buffer, uint32 size);
    /// Returns a line, or an empty text at the end of the stream.
    narrow_string read_line();
    /// Reads a line into `line`, whose storage is released first. Returns the length, or 0xFFFFFFFF at the end of the
    /// stream. A line of 2^32 - 1 bytes or more comes in parts.
    uint32 read_line(byte_vector & line);
    /// The same for a text, whose storage serves again: the form for many lines.
    uint32 read_line(narrow_string & line);

private:
    bool _ours() const override;

    template <class Store>
    bool take_line(uint64 most, Store store);
};

} // namespace stream
