#include "socle/any/integers.h"

#include "socle/nio/integer_codes.h"

namespace any {

int64 read(stream::binary_input & input) { return nio::read_p2(input.bits()); }

void write(int64 value, stream::binary_output & output) { nio::write_p2(value, output.bits()); }

} // namespace any
