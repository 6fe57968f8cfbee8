#include "header.h"

#include <socle/io/exception.h>
#include <socle/nio/blocks.h>
#include <socle/stream/endian_input.h>
#include <socle/stream/endian_output.h>
#include <socle/stream/vector_input.h>
#include <socle/stream/vector_output.h>
#include <socle/un/digits.h>

#include <algorithm>
#include <chrono>
#include <string>

namespace {

constexpr std::size_t crc_offset = 124;
constexpr unsigned char second_generation = 129;

/// CRC-16/XMODEM.
uint16 crc_16(byte_vector const & data, std::size_t count) {
    uint32 crc = 0;
    for (std::size_t i = 0; i < count; ++i) {
        crc ^= uint32(data[i]) << 8;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 0x8000) != 0 ? crc << 1 ^ 0x1021 : crc << 1;
    }
    return static_cast<uint16>(crc);
}

header header_in(byte_vector const & bytes, narrow_string const & path) {
    if (bytes.size() < header::size) {
        throw io::exception("is too short for a MacBinary header: " + std::to_string(bytes.size()) + " of "
                                + std::to_string(header::size) + " bytes",
                            path, 0);
    }
    header result;
    stream::vector_input in(bytes);
    result.read(in);
    if (!result.plausible())
        throw io::exception("does not begin with a MacBinary header", path, 0);
    if (auto const crc = crc_16(bytes, crc_offset); result.version != 0 && result.crc != crc) {
        throw io::exception("has a damaged MacBinary header: its CRC is " + hex_16(crc) + ", but it says "
                                + hex_16(result.crc),
                            path, 0);
    }
    return result;
}

} // namespace

void header::read(stream::input & input) {
    stream::big_endian_input in(input);
    zeros = in.read8();
    name_length = in.read8();
    name.resize(longest_name);
    in.read(name.data(), longest_name);
    name.resize(std::min<std::size_t>(name_length, longest_name));
    finder.type.read(in, true);
    finder.creator.read(in, true);
    finder.flags = static_cast<uint16>(in.read8() << 8);
    zeros |= in.read8();
    finder.location.read(in, true);
    in.skip(3);
    zeros |= in.read8();
    data_length = in.read32();
    resource_length = in.read32();
    created = in.read32();
    modified = in.read32();
    in.skip(2);
    finder.flags |= in.read8();
    in.skip(18);
    second_length = in.read16();
    version = in.read8();
    in.skip(1);
    crc = in.read16();
}

void header::write(stream::output & output) const {
    byte_vector bytes;
    stream::vector_output memory(bytes);
    stream::big_endian_output out(memory);
    out.write8(0);
    out.write8(static_cast<unsigned char>(name.size()));
    out.write(name);
    nio::fill(out, longest_name - name.size(), 0, size);
    finder.type.write(out);
    finder.creator.write(out);
    out.write8(static_cast<unsigned char>(finder.flags >> 8));
    out.write8(0);
    finder.location.write(out);
    nio::fill(out, 4, 0, size);
    out.write32(data_length);
    out.write32(resource_length);
    out.write32(created);
    out.write32(modified);
    nio::fill(out, 2, 0, size);
    out.write8(static_cast<unsigned char>(finder.flags));
    nio::fill(out, 20, 0, size);
    out.write8(second_generation);
    out.write8(second_generation);
    out.write16(crc_16(bytes, crc_offset));
    nio::fill(out, 2, 0, size);
    output.write(reinterpret_cast<char const *>(bytes.data()), size);
}

bool header::plausible() const {
    return zeros == 0 && name_length >= 1 && name_length <= longest_name && name.find('\0') == narrow_string::npos
           && data_length <= longest_fork && resource_length <= longest_fork;
}

header header_of(stream::input & input, narrow_string const & path) {
    byte_vector bytes(header::size);
    bytes.resize(input.read(reinterpret_cast<char *>(bytes.data()), header::size));
    return header_in(bytes, path);
}

narrow_string local_date(uint32 seconds) {
    nio::time time;
    time.set(seconds, nio::time::format_mac_seconds);
    time.to_local();
    std::chrono::sys_days const first_day = std::chrono::year(1601) / 1 / 1;
    auto const since = std::chrono::seconds(time.file_time() / 10'000'000);
    auto const day = std::chrono::floor<std::chrono::days>(since);
    std::chrono::year_month_day const date(first_day + day);
    std::chrono::hh_mm_ss const clock(since - day);
    auto const two = [](auto count) { return un::write(static_cast<uint64>(count), 10, 2); };
    return std::to_string(int(date.year())) + '-' + two(unsigned(date.month())) + '-' + two(unsigned(date.day())) + ' '
           + two(clock.hours().count()) + ':' + two(clock.minutes().count()) + ':' + two(clock.seconds().count());
}

uint32 mac_seconds(nio::time const & time) {
    constexpr uint64 second = 10'000'000;
    nio::time first;
    first.set(0, nio::time::format_mac_seconds);
    nio::time last;
    last.set(0xFFFFFFFF, nio::time::format_mac_seconds);
    if (time.file_time() >= last.file_time() + second)
        return 0xFFFFFFFF;
    return time.file_time() < first.file_time() ? 0 : static_cast<uint32>(time.get(nio::time::format_mac_seconds));
}

narrow_string hex_16(uint16 value) { return "0x" + un::write(value, 16, 4); }
