// Shows what the headers of MacBinary files say: how a Macintosh file, its two forks and what the Finder knows of it
// travel in one file of bytes.

#include "mac_roman.h"

#include "command/line.h"
#include "command/option.h"
#include "io/exception.h"
#include "io/mac/info.h"
#include "stream/endian_input.h"
#include "stream/vector_input.h"
#include "un/digits.h"

#include <algorithm>
#include <exception>
#include <fstream>
#include <iostream>
#include <string>

namespace {

constexpr uint32 header_size = 128;
constexpr std::size_t crc_offset = 124;
constexpr std::size_t longest_name = 63;

/// A header, field by field as it is stored; the numbers are big-endian.
///
/// | offset | bytes | field                                                                          |
/// |--------|-------|--------------------------------------------------------------------------------|
/// | 0      | 1     | 0                                                                              |
/// | 1      | 64    | the length of the name, then the name, up to 63 characters                     |
/// | 65     | 8     | type and creator                                                               |
/// | 73     | 1     | the high byte of the Finder flags                                              |
/// | 74     | 1     | 0                                                                              |
/// | 75     | 4     | location                                                                       |
/// | 79     | 3     | folder and protection, which say nothing about the file itself                 |
/// | 82     | 1     | 0                                                                              |
/// | 83     | 8     | the lengths of the data fork and the resource fork                             |
/// | 91     | 8     | created and modified, in seconds since 1904                                    |
/// | 99     | 2     | the length of a comment                                                        |
/// | 101    | 1     | the low byte of the Finder flags                                               |
/// | 122    | 2     | the version, 0 in the first generation, and the oldest that a reader must know |
/// | 124    | 2     | CRC of all that stands before it; the first generation has none                |
struct header {
    uint32 zeros = 0; // all the bytes that must be 0, joined
    std::size_t name_length = 0;
    narrow_string name;
    io::mac::file_info finder;
    uint32 data_length = 0;
    uint32 resource_length = 0;
    uint32 created = 0;
    uint32 modified = 0;
    unsigned char version = 0;
    uint16 crc = 0;

    void read(stream::input & input) {
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

    /// Whether this can be a header at all: the format has no mark that every generation bears.
    bool plausible() const {
        return zeros == 0 && name_length >= 1 && name_length <= longest_name && name.find('\0') == narrow_string::npos
               && data_length <= 0x7FFFFFFF && resource_length <= 0x7FFFFFFF;
    }
};

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

narrow_string hex_16(uint16 value) { return "0x" + un::write(value, 16, 4); }

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

/// Throws an `io::exception`, with the path as its origin, if the file does not begin with a good header.
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

void show(narrow_string const & path, header const & h) {
    std::cout << path << '\n'
              << "  name          " << readable(h.name) << '\n'
              << "  type          " << readable(h.finder.type.to_string()) << '\n'
              << "  creator       " << readable(h.finder.creator.to_string()) << '\n'
              << "  Finder flags  " << hex_16(h.finder.flags) << '\n'
              << "  location      v " << h.finder.location.v << ", h " << h.finder.location.h << '\n'
              << "  created       " << h.created << '\n'
              << "  modified      " << h.modified << '\n'
              << "  data fork     " << h.data_length << " bytes\n"
              << "  resource fork " << h.resource_length << " bytes\n"
              << "  header CRC    " << (h.version == 0 ? "none (first generation)" : hex_16(h.crc) + ", agrees")
              << '\n';
}

/// Shows the files one by one and gives whether all of them could be shown.
bool show_all(std::vector<narrow_string> const & paths) {
    bool good = true;
    for (auto const & path : paths) {
        try {
            show(path, header_of(path));
        } catch (un::exception const & e) {
            std::cerr << "macbinary: " << e.origin() << ' ' << e.message() << '\n';
            good = false;
        }
    }
    return good;
}

} // namespace

int main(int argc, char ** argv) {
    try {
        command::line line(argc, argv);
        command::option<bool> help(line, "--help|-h", false, "show this list");
        line.digest();
        if (help() || line.empty()) {
            line.show_options("macbinary, which takes MacBinary files");
            return help() ? 0 : 1;
        }
        bool const good = show_all(line);
        return good && std::cout.flush() ? 0 : 1;
    } catch (un::exception const & e) {
        std::cerr << "macbinary: " << e.message() << '\n';
    } catch (std::exception const & e) {
        std::cerr << "macbinary: " << e.what() << '\n';
    }
    return 1;
}
