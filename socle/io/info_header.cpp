#include "socle/algorithm/crc.h"
#include "socle/io/info_header_internal.h"
#include "socle/stream/array_input.h"
#include "socle/stream/array_output.h"
#include "socle/stream/endian_input.h"
#include "socle/stream/endian_output.h"

namespace io {

namespace {

/// The fields that are read back, in their order, for both directions: `form` reads or writes each.
void lay_out(auto & form, auto & header) {
    form.reserved(65);
    form.record(header.finder.type);
    form.record(header.finder.creator);
    form.high_byte(header.finder.flags);
    form.reserved(1);
    form.record(header.finder.location);
    form.reserved(12);
    form.number(header.created);
    form.number(header.modified);
    form.reserved(2);
    form.low_byte(header.finder.flags);
}

struct reader {
    stream::big_endian_input in;

    void reserved(uint32 count) { in.skip(count); }
    void record(un::structure & record) { record.read(in, true); }
    void number(uint32 & number) { number = in.read32(); }
    void high_byte(uint16 & number) { number = static_cast<uint16>(in.read8() << 8 | (number & 0xFF)); }
    void low_byte(uint16 & number) { number = static_cast<uint16>((number & 0xFF00) | in.read8()); }
};

struct writer {
    stream::big_endian_output out;

    void reserved(uint32 count) { out.fill(count, 0); }
    void record(un::structure const & record) { record.write(out); }
    void number(uint32 number) { out.write32(number); }
    void high_byte(uint16 number) { out.write8(static_cast<unsigned char>(number >> 8)); }
    void low_byte(uint16 number) { out.write8(static_cast<unsigned char>(number)); }
};

uint16 crc_of(char const * bytes, uint32 count) {
    algorithm::crc::crc<16, 0x1021, 0, 1, 0, 0> crc;
    crc.update(reinterpret_cast<unsigned char const *>(bytes), count);
    crc.finish();
    auto const & result = crc.result();
    return static_cast<uint16>(result[0] << 8 | result[1]);
}

} // namespace

void info_header::read(char const * bytes, uint32 count) {
    stream::array_input memory(bytes, count);
    reader form{stream::big_endian_input(memory)};
    lay_out(form, *this);
}

std::array<char, info_header::size> info_header::write() const {
    constexpr unsigned char version = 0x81;
    std::array<char, size> bytes;
    stream::array_output memory(bytes.data(), size);
    writer form{stream::big_endian_output(memory)};
    lay_out(form, *this);
    form.record(mac::os_type("mBIN"));
    form.reserved(16);
    form.out.write8(version);
    form.out.write8(version);
    form.out.write16(crc_of(bytes.data(), static_cast<uint32>(memory.tell())));
    form.reserved(2);
    return bytes;
}

} // namespace io
