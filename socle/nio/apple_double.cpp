#include "socle/nio/apple_double_internal.h"

#include <algorithm>

namespace nio::apple_double {

namespace {

constexpr std::array<unsigned char, 8> signature = {0, 5, 0x16, 7, 0, 2, 0, 0};
constexpr uint32 count_offset = 24;
constexpr uint32 head_size = 26;

struct entry {
    uint32 id, offset, length;
};

constexpr uint32 entry_size = 12;
constexpr entry entries[] = {{finder_info_id, finder_info_offset, finder_info_size},
                             {finder_info_id, resource_offset, 0}};
static_assert(head_size + std::size(entries) * entry_size == finder_info_offset);

uint32 number(unsigned char const * bytes) {
    return uint32(bytes[0]) << 24 | uint32(bytes[1]) << 16 | uint32(bytes[2]) << 8 | bytes[3];
}

void store(unsigned char * bytes, uint32 value) {
    for (int i = 0; i < 4; ++i)
        bytes[i] = static_cast<unsigned char>(value >> (24 - 8 * i));
}

bool read_whole(input & file, unsigned char * bytes, uint32 size) {
    return file.read(reinterpret_cast<char *>(bytes), size) == size;
}

/// The first entry `id` of `count`.
bool find(input & file, uint32 id, entry & found, uint32 & count) {
    unsigned char bytes[head_size];
    if (!read_whole(file, bytes, head_size) || !std::equal(signature.begin(), signature.end(), bytes))
        return false;
    count = bytes[count_offset] * 256u + bytes[count_offset + 1];
    for (uint32 i = 0; i < count; ++i) {
        unsigned char stored[entry_size];
        if (!read_whole(file, stored, entry_size))
            return false;
        found = {number(stored), number(stored + 4), number(stored + 8)};
        if (found.id == id)
            return true;
    }
    return false;
}

} // namespace

head_bytes head() {
    head_bytes bytes{};
    std::copy(signature.begin(), signature.end(), bytes.begin());
    bytes[count_offset + 1] = std::size(entries);
    unsigned char * at = bytes.data() + head_size;
    for (auto const & e : entries) {
        store(at, e.id);
        store(at + 4, e.offset);
        store(at + 8, e.length);
        at += entry_size;
    }
    return bytes;
}

bool find_entry(input & file, uint32 id, uint32 & offset) {
    entry found;
    uint32 count;
    if (!find(file, id, found, count))
        return false;
    offset = found.offset;
    return true;
}

bool find_room(input & file, uint32 id, uint32 size, uint32 & offset) {
    entry found;
    uint32 count;
    if (!find(file, id, found, count) || found.length < size || found.offset < head_size + count * entry_size)
        return false;
    offset = found.offset;
    return true;
}

} // namespace nio::apple_double
