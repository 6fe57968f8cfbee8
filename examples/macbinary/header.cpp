#include "header.h"

#include "io/exception.h"
#include "nio/time.h"
#include "stream/endian_input.h"
#include "stream/vector_input.h"
#include "un/digits.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <string>

namespace {

constexpr uint32 header_size = 128;
constexpr std::size_t crc_offset = 124;
constexpr std::size_t longest_name = 63;

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

/// The first bytes of the file, fewer if it is shorter.
byte_vector start_of(narrow_string const & path) {
    std::ifstream file(path, std::ios::binary);
    byte_vector bytes(header_size);
    file.read(reinterpret_cast<char *>(bytes.data()), header_size);
    if (!file.is_open() || file.bad())
        throw io::exception("cannot be read", path, 0);
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    return bytes;
}

} // namespace

void header::read(stream::input & input) {
    stream::big_endian_input in(input);
    zeros = in.read8();
    name_length = in.read8();
    name.resize(longest_name);
    in.read(name.data(), longest_name);
    name.resize(std::min(name_length, longest_name));
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
    in.skip(20);
    version = in.read8();
    in.skip(1);
    crc = in.read16();
}

bool header::plausible() const {
    return zeros == 0 && name_length >= 1 && name_length <= longest_name && name.find('\0') == narrow_string::npos
           && data_length <= 0x7FFFFFFF && resource_length <= 0x7FFFFFFF;
}

header header_of(narrow_string const & path) {
    auto const bytes = start_of(path);
    if (bytes.size() < header_size) {
        throw io::exception("is too short for a MacBinary header: " + std::to_string(bytes.size()) + " of "
                                + std::to_string(header_size) + " bytes",
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

narrow_string hex_16(uint16 value) { return "0x" + un::write(value, 16, 4); }
