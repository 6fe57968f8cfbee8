#include "socle/io/mac/rect.h"

#include "socle/io/mac/read_record_internal.h"
#include "socle/stream/endian_output.h"

namespace io::mac {

rect::rect(short t, short l, short b, short r) : top(t), left(l), bottom(b), right(r) {}

rect::~rect() = default;

uint32 rect::read(stream::input & input, bool) {
    return read_record<fixed_size()>(input, [this](auto in) {
        for (short * side : {&top, &left, &bottom, &right})
            in.number(*side);
    });
}

uint32 rect::write(stream::output & output) const {
    stream::big_endian_output out(output);
    for (short side : {top, left, bottom, right})
        out.write16(static_cast<uint16>(side));
    return size();
}

uint32 rect::size() const { return fixed_size(); }

} // namespace io::mac
