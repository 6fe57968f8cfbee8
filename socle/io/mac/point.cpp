#include "socle/io/mac/point.h"

#include "socle/io/mac/read_record_internal.h"
#include "socle/stream/endian_output.h"

namespace io::mac {

point::point(short down, short right) : v(down), h(right) {}

point::~point() = default;

uint32 point::read(stream::input & input, bool) {
    return read_record<fixed_size()>(input, [this](auto in) {
        in.number(v);
        in.number(h);
    });
}

uint32 point::write(stream::output & output) const {
    stream::big_endian_output out(output);
    out.write16(static_cast<uint16>(v));
    out.write16(static_cast<uint16>(h));
    return size();
}

uint32 point::size() const { return fixed_size(); }

} // namespace io::mac
