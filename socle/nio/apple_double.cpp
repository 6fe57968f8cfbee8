#include "socle/nio/apple_double_internal.h"

#include "socle/basic/internal/byte_order.h"

#include <algorithm>
#include <string_view>

namespace nio::apple_double {

namespace {

constexpr std::string_view signature("\0\5\x16\7\0\2\0\0", 8);
constexpr uint32 count_offset = 24;
constexpr uint32 head_size = 26;

struct entry {
    uint32 id, offset, length;
};

constexpr uint32 entry_size = 12;
constexpr entry entries[] = {{finder_info_id, finder_info_offset, finder_info_size},
                             {finder_info_id, resource_offset, 0}};
static_assert(head_size + std::size(entries) * entry_size == finder_info_offset);

uint32 number(char const * bytes) { return basic::load<uint32>(bytes, true); }

bool read_whole(input & file, char * bytes, uint32 size) { return file.read(bytes, size) == size; }

/// The first entry `id` of `count`.
bool find(input & file, uint32 id, entry & found, uint32 & count) {
    char bytes[head_size];
    if (!read_whole(file, bytes, head_size) || !std::string_view(bytes, head_size).starts_with(signature))
        return false;
    count = basic::load<uint16>(bytes + count_offset, true);
    for (uint32 i = 0; i < count; ++i) {
        char stored[entry_size];
        if (!read_whole(file, stored, entry_size))
            return false;
        found = {number(stored), number(stored + 4), number(stored + 8)};
        if (found.id == id)
            return true;
    }
    return false;
}

} // namespace

std::array<char, resource_offset> head(finder_info const & info) {
    std::array<char, resource_offset> bytes{};
    std::copy(signature.begin(), signature.end(), bytes.begin());
    basic::store<uint16>(bytes.data() + count_offset, std::size(entries), true);
    char * at = bytes.data() + head_size;
    for (auto const & e : entries)
        for (uint32 const field : {e.id, e.offset, e.length}) {
            basic::store(at, field, true);
            at += sizeof field;
        }
    std::copy(info.begin(), info.end(), at);
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
