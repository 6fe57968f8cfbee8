#include "side_files.h"

#include <socle/nio/file.h>
#include <socle/nio/filesystem_exception.h>
#include <socle/stream/array_input.h>
#include <socle/stream/endian_input.h>
#include <socle/stream/endian_output.h>
#include <socle/stream/vector_output.h>

#include <algorithm>
#include <vector>

namespace {

/// Up to `size` bytes from `offset` on, which lies in the file.
byte_vector read_at(nio::file & file, uint64 offset, uint32 size) {
    byte_vector bytes(size);
    if (!file.seek(offset))
        throw nio::filesystem_exception("cannot read", file.path());
    bytes.resize(file.read(reinterpret_cast<char *>(bytes.data()), size));
    return bytes;
}

stream::array_input memory(byte_vector const & bytes) {
    return {reinterpret_cast<char const *>(bytes.data()), static_cast<uint32>(bytes.size())};
}

finder_bytes first_bytes(byte_vector const & bytes) {
    finder_bytes result{};
    std::copy_n(bytes.begin(), std::min(bytes.size(), result.size()), result.begin());
    return result;
}

/// A stream of Finder information: this, 8 zeros, the information, 12 zeros.
constexpr unsigned char finder_signature[] = {'A', 'F', 'P', 0, 0, 0, 1, 0};
constexpr uint32 finder_stream_offset = 16, finder_stream_size = 60;

struct entry {
    uint32 id, offset, length;

    bool operator==(entry const &) const = default;
};

constexpr uint32 resource_id = 2, finder_id = 9;

/// The library writes a sidecar with these two, and lets the resource fork go on to the end of the file.
std::vector<entry> const own_entries = {{finder_id, 50, 32}, {finder_id, 82, 0}};

/// The table of an AppleDouble file; empty if it is none.
std::vector<entry> table_of(nio::file & file, uint64 size) {
    constexpr uint32 head_size = 26, entry_size = 12, longest_table = 65535 * entry_size;
    byte_vector const head = read_at(file, 0, head_size);
    if (head.size() < head_size)
        return {};
    auto head_memory = memory(head);
    stream::big_endian_input in(head_memory);
    uint32 const magic = in.read32(), version = in.read32();
    if (magic != 0x00051607 || (version != 0x00010000 && version != 0x00020000))
        return {};
    in.skip(16);
    uint32 const count = in.read16();
    if (size < head_size + uint64(count) * entry_size)
        return {};
    byte_vector const bytes = read_at(file, head_size, std::min(count * entry_size, longest_table));
    auto table_memory = memory(bytes);
    stream::big_endian_input numbers(table_memory);
    std::vector<entry> table(bytes.size() / entry_size);
    for (auto & e : table) {
        e.id = numbers.read32();
        e.offset = numbers.read32();
        e.length = numbers.read32();
        if (uint64(e.offset) + e.length > size)
            return {};
    }
    return table;
}

/// Whether there are other bytes than zeros.
bool anything_in(nio::file & file, uint64 offset, uint64 size) {
    constexpr uint32 step = 65536;
    for (uint64 end = offset + size; offset < end;) {
        byte_vector const bytes = read_at(file, offset, static_cast<uint32>(std::min<uint64>(end - offset, step)));
        if (bytes.empty() || std::any_of(bytes.begin(), bytes.end(), [](unsigned char b) { return b != 0; }))
            return !bytes.empty();
        offset += bytes.size();
    }
    return false;
}

} // namespace

extent whole_file(wide_string const & path) { return {path, 0, nio::file(path, nio::file::mode_read).size()}; }

std::optional<apple_double> read_apple_double(wide_string const & path) {
    nio::file file(path, nio::file::mode_read);
    uint64 const size = file.size();
    auto const table = table_of(file, size);
    apple_double result;
    for (auto const & e : table) {
        if (e.length == 0)
            continue;
        if (e.id == finder_id && !result.finder) {
            auto const known = std::min<uint32>(e.length, finder_bytes().size());
            result.finder = first_bytes(read_at(file, e.offset, known));
            result.information = {path, e.offset, known};
            result.more = result.more || anything_in(file, e.offset + known, e.length - known);
        } else if (e.id == resource_id && result.resource.path.empty()) {
            result.resource = {path, e.offset, e.length};
        } else {
            result.more = true;
        }
    }
    if (table == own_entries && size > own_entries[1].offset)
        result.resource = {path, own_entries[1].offset, size - own_entries[1].offset};
    if (!result.finder && result.resource.path.empty())
        return {};
    return result;
}

void name_resource_fork(wide_string const & path) {
    constexpr uint64 second_entry = 38, resource_offset = 82;
    nio::file file(path, nio::file::mode_read_write);
    uint64 const size = file.size();
    byte_vector bytes;
    stream::vector_output memory(bytes);
    stream::big_endian_output out(memory);
    out.write32(resource_id);
    out.write32(resource_offset);
    out.write32(static_cast<uint32>(size - resource_offset));
    // The length has 32 bits; without the entry the library goes on to find a longer fork.
    if (size - resource_offset > 0xFFFFFFFF || table_of(file, size) != own_entries)
        return;
    if (!file.seek(second_entry))
        throw nio::filesystem_exception("cannot write", path);
    file.write(reinterpret_cast<char const *>(bytes.data()), static_cast<uint32>(bytes.size()));
}

bool is_info_header(wide_string const & path) {
    // The last field that the library reads ends at 102; behind 128 there would be forks.
    constexpr uint32 least_size = 102, greatest_size = 128, longest_name = 63;
    nio::file file(path, nio::file::mode_read);
    byte_vector const bytes = read_at(file, 0, greatest_size + 1);
    return bytes.size() >= least_size && bytes.size() <= greatest_size && bytes[0] == 0 && bytes[74] == 0
           && bytes[82] == 0 && bytes[1] <= longest_name;
}

void write_finder_stream(wide_string const & path, finder_bytes const & finder) {
    std::array<unsigned char, finder_stream_size> bytes{};
    std::copy(std::begin(finder_signature), std::end(finder_signature), bytes.begin());
    std::copy(finder.begin(), finder.end(), bytes.begin() + finder_stream_offset);
    nio::file file(path, nio::file::mode_anew);
    if (!file.is_open())
        throw nio::filesystem_exception("cannot create", path);
    file.write(reinterpret_cast<char const *>(bytes.data()), finder_stream_size);
    file.close();
}

std::optional<finder_bytes> read_finder_stream(wide_string const & path) {
    nio::file file(path, nio::file::mode_read);
    byte_vector const bytes = read_at(file, 0, finder_stream_size);
    if (bytes.size() < finder_stream_size
        || !std::equal(std::begin(finder_signature), std::end(finder_signature), bytes.begin()))
        return {};
    return first_bytes({bytes.begin() + finder_stream_offset, bytes.end()});
}
