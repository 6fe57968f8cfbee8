#include "socle/stream/line_input.h"

#include "socle/nio/line_ends_internal.h"
#include "socle/stream/lending_internal.h"

#include <cstring>
#include <typeinfo>

namespace stream {

namespace {

using nio::ends_line;

uint32 const no_line = 0xFFFFFFFF;

} // namespace

line_input::line_input(input & stream) : direct_input(stream) {}

line_input::~line_input() = default;

/// Hands one line to `store`, in pieces and `most` bytes of it at most. False at the end of the stream.
///
/// Bytes that are in memory are taken as far as the line goes and not beyond; the others come one by one through
/// `read()`, and so does everything for a caller's class.
template <class Store>
bool line_input::take_line(uint64 most, Store store) {
    bool const own = typeid(*this) == typeid(line_input) && underlying();
    for (uint64 stored = 0; stored < most;) {
        auto held = own ? lending::bytes(*underlying()) : std::span<char const>();
        if (held.empty()) {
            int const byte = read();
            if (byte == -1)
                return stored > 0;
            char const single = static_cast<char>(byte);
            if (!ends_line(single)) {
                store(&single, 1);
                ++stored;
            } else if (stored > 0) {
                return true;
            }
            continue;
        }
        std::size_t lead = 0;
        while (stored == 0 && lead < held.size() && ends_line(held[lead]))
            ++lead;
        held = held.subspan(lead);
        auto const here = static_cast<std::size_t>(std::min<uint64>(held.size(), most - stored));
        auto const length = nio::find_line_end(held.data(), here);
        store(held.data(), length);
        stored += length;
        bool const ended = stored > 0 && stored < most && length < held.size();
        lending::take(*underlying(), lead + length + ended);
        if (ended)
            return true;
    }
    return true;
}

uint32 line_input::read_line(char * buffer, uint32 size) {
    if (buffer == nullptr || size == 0)
        return 0;
    char * end = buffer;
    bool const found = take_line(size - 1, [&](char const * piece, std::size_t count) {
        std::memcpy(end, piece, count);
        end += count;
    });
    *end = '\0';
    return found ? static_cast<uint32>(end - buffer) : no_line;
}

narrow_string line_input::read_line() {
    narrow_string line;
    take_line(line.max_size(), [&](char const * piece, std::size_t count) { line.append(piece, count); });
    return line;
}

uint32 line_input::read_line(byte_vector & line) {
    byte_vector().swap(line);
    bool const found = take_line(
        no_line - 1, [&](char const * piece, std::size_t count) { line.insert(line.end(), piece, piece + count); });
    return found ? static_cast<uint32>(line.size()) : no_line;
}

uint32 line_input::read_line(narrow_string & line) {
    line.clear();
    bool const found =
        take_line(no_line - 1, [&](char const * piece, std::size_t count) { line.append(piece, count); });
    return found ? static_cast<uint32>(line.size()) : no_line;
}

bool line_input::_ours() const { return typeid(*this) == typeid(line_input); }

} // namespace stream
