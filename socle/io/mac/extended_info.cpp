#include "socle/io/mac/extended_info.h"

#include "socle/stream/endian_input.h"
#include "socle/stream/endian_output.h"

namespace io::mac {

extended_info::~extended_info() = default;

extended_file_info::~extended_file_info() = default;

uint32 extended_file_info::read(stream::input & input, bool) {
    stream::big_endian_input in(input);
    in.skip(8);
    extended_flags = in.read16();
    reserved2 = in.read16();
    put_away_folder_id = in.read32();
    return size();
}

uint32 extended_file_info::write(stream::output & output) const {
    stream::big_endian_output out(output);
    out.fill(8, 0);
    out.write16(extended_flags);
    out.write16(reserved2);
    out.write32(put_away_folder_id);
    return size();
}

uint32 extended_file_info::size() const { return fixed_size(); }

extended_folder_info::~extended_folder_info() = default;

uint32 extended_folder_info::read(stream::input & input, bool) {
    stream::big_endian_input in(input);
    scroll_position.read(in, true);
    in.skip(4);
    extended_flags = in.read16();
    reserved2 = in.read16();
    put_away_folder_id = in.read32();
    return size();
}

uint32 extended_folder_info::write(stream::output & output) const {
    stream::big_endian_output out(output);
    scroll_position.write(out);
    out.fill(4, 0);
    out.write16(extended_flags);
    out.write16(reserved2);
    out.write32(put_away_folder_id);
    return size();
}

uint32 extended_folder_info::size() const { return fixed_size(); }

} // namespace io::mac
