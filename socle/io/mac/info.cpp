#include "socle/io/mac/info.h"

#include "socle/stream/endian_input.h"
#include "socle/stream/endian_output.h"

namespace io::mac {

uint32 const info::info_size;

info::~info() = default;

file_info::~file_info() = default;

uint32 file_info::read(stream::input & input, bool) {
    stream::big_endian_input in(input);
    type.read(in, true);
    creator.read(in, true);
    flags = in.read16();
    location.read(in, true);
    in.skip(2);
    return size();
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
    stream::big_endian_input in(input);
    bounds.read(in, true);
    flags = in.read16();
    location.read(in, true);
    in.skip(2);
    return size();
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
