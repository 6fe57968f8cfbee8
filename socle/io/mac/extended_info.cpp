#include "socle/io/mac/extended_info.h"

#include "socle/io/mac/read_record_internal.h"
#include "socle/stream/endian_output.h"

namespace io::mac {

extended_info::~extended_info() = default;

extended_file_info::~extended_file_info() = default;

uint32 extended_file_info::read(stream::input & input, bool) {
    return read_record<fixed_size()>(input, [this](auto in) {
        in.skip(8);
        in.number(extended_flags);
        in.number(reserved2);
        in.number(put_away_folder_id);
    });
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
    return read_record<fixed_size()>(input, [this](auto in) {
        in.number(scroll_position.v);
        in.number(scroll_position.h);
        in.skip(4);
        in.number(extended_flags);
        in.number(reserved2);
        in.number(put_away_folder_id);
    });
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
