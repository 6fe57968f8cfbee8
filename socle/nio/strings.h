#pragma once

#include "socle/basic/buffer.h"
#include "socle/nio/input.h"
#include "socle/nio/output.h"

/// Text in streams: in fields of fixed size, ended by a zero byte, and in lines. `encoding` is a selector of
/// `nio/encoding.h`. What the streams throw passes through.
namespace nio {

/// Reads `length` bytes, and skips what is left of `field_size`; 0 means a field of just the length. With
/// `stop_at_nul` the text ends before its first zero byte. A stream that ends within the length throws a
/// `basic::exception`, "input stream is too short to complete a string"; one that ends after it is no error.
SOCLE_API narrow_string read_string(input & in, uint32 length, uint32 field_size, bool stop_at_nul);
/// Reads as `read_string` and converts from `encoding`.
SOCLE_API wide_string read(input & in, int encoding, uint32 length, uint32 field_size, bool stop_at_nul);
/// Reads up to a zero byte, which is consumed, or the end. Single reads: it belongs on a buffered stream.
SOCLE_API wide_string read_c(input & in, int encoding);

/// Writes the text, cut to `limit` bytes unless that is 0, and zero bytes up to `field_size`.
SOCLE_API void write_string(output & out, narrow_string const & bytes, uint32 field_size, uint32 limit);
/// Converts the text to `encoding` and writes it in the same way. The cut is in bytes and may fall within a character.
SOCLE_API void write(output & out, wide_string const & text, int encoding, uint32 field_size, uint32 limit);
/// Writes the text and a zero byte.
SOCLE_API void write_c(output & out, wide_string const & text, int encoding);
/// The number of bytes that `write` writes with the same arguments, at most 2^32 - 1.
SOCLE_API uint32 written_size(wide_string const & text, int encoding, uint32 field_size, uint32 limit);

/// Reads a line of at most as many bytes as the buffer has; a longer one goes on in the next call. The buffer is
/// resized to the line, so a caller who reads on sizes it again first; a static one throws at the end of the line. CR,
/// LF and CR LF all end a line, and empty lines are passed over. False at the end of the stream, whatever was read by
/// then. Single reads: it belongs on a buffered stream.
SOCLE_API bool read_line(input & in, basic::buffer<char> & line);

} // namespace nio
