#include "socle/io/mac/info.h"

#include "socle/io/mac/read_record_internal.h"
#include "socle/stream/endian_output.h"

namespace io::mac {

uint32 const info::info_size;

info::~info() = default;

file_info::~file_info() = default;

uint32 file_info::read(stream::input & input, bool) {
    return read_record<fixed_size()>(input, [this](auto in) {
        in.code(type);
        in.code(creator);
        in.number(flags);
        in.number(location.v);
        in.number(location.h);
        in.skip(2);
    });
}

uint32 file_info::write(stream::output & output) const {
    stream::big_endian_output out(output);
    type.write(out);
    creator.write(out);
    out.write16(flags);
    location.write(out);
    out.fill(2, 0);
    return size();
}

uint32 file_info::size() const { return fixed_size(); }

folder_info::~folder_info() = default;

uint32 folder_info::read(stream::input & input, bool) {
    return read_record<fixed_size()>(input, [this](auto in) {
        for (short * side : {&bounds.top, &bounds.left, &bounds.bottom, &bounds.right})
            in.number(*side);
        in.number(flags);
        in.number(location.v);
        in.number(location.h);
        in.skip(2);
    });
}

uint32 folder_info::write(stream::output & output) const {
    stream::big_endian_output out(output);
    bounds.write(out);
    out.write16(flags);
    location.write(out);
    out.fill(2, 0);
    return size();
}

uint32 folder_info::size() const { return fixed_size(); }

} // namespace io::mac
