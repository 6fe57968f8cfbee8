#include "socle/nio/strings.h"

#include "socle/basic/exception.h"
#include "socle/nio/blocks.h"
#include "socle/nio/encoding.h"
#include "socle/nio/in_blocks_internal.h"
#include "socle/nio/lending_internal.h"
#include "socle/nio/line_ends_internal.h"

#include <algorithm>
#include <memory>
#include <new>

namespace nio {

namespace {

constexpr uint32 block_size = 0x10000;

/// How much of the text goes into its field.
std::size_t cut(narrow_string const & bytes, uint32 limit) {
    return limit != 0 ? std::min<std::size_t>(bytes.size(), limit) : bytes.size();
}

void write_all(output & out, narrow_string const & bytes, std::size_t size) {
    in_blocks(bytes.data(), size, [&](char const * data, uint32 count) { out.write(data, count); });
}

void read_all(input & in, char * bytes, uint32 count) {
    if (in.read(bytes, count) < count)
        throw basic::exception("input stream is too short to complete a string");
}

narrow_string read_bytes(input & in, uint32 length) {
    // Not initialised: a field may be far larger than what the stream has.
    std::unique_ptr<char[]> const whole(new (std::nothrow) char[length]);
    if (whole) {
        read_all(in, whole.get(), length);
        return {whole.get(), length};
    }
    // No room for a length that may be no more than a claim: take what comes.
    narrow_string text;
    for (auto const block = std::make_unique<char[]>(block_size); text.size() < length;) {
        auto const count = std::min<uint32>(block_size, length - static_cast<uint32>(text.size()));
        read_all(in, block.get(), count);
        text.append(block.get(), count);
    }
    return text;
}

} // namespace

narrow_string read_string(input & in, uint32 length, uint32 field_size, bool stop_at_nul) {
    auto text = read_bytes(in, length);
    if (length < field_size)
        skip(in, field_size - length, block_size);
    if (stop_at_nul)
        text.resize(std::min(text.find('\0'), text.size()));
    return text;
}

wide_string read(input & in, int encoding, uint32 length, uint32 field_size, bool stop_at_nul) {
    return decode(read_string(in, length, field_size, stop_at_nul), encoding);
}

wide_string read_c(input & in, int encoding) {
    narrow_string bytes;
    for (;;) {
        if (auto const held = lending::bytes(in); !held.empty()) {
            auto const end = std::find(held.begin(), held.end(), '\0');
            bytes.append(held.begin(), end);
            bool const found = end != held.end();
            lending::take(in, static_cast<uint64>(end - held.begin()) + found);
            if (found)
                break;
            continue;
        }
        char byte;
        if (in.read(&byte, 1) == 0 || byte == '\0')
            break;
        bytes += byte;
    }
    return decode(bytes, encoding);
}

void write_string(output & out, narrow_string const & bytes, uint32 field_size, uint32 limit) {
    auto const size = cut(bytes, limit);
    write_all(out, bytes, size);
    if (field_size > size)
        fill(out, field_size - size, '\0', block_size);
}

void write(output & out, wide_string const & text, int encoding, uint32 field_size, uint32 limit) {
    write_string(out, encode(text, encoding), field_size, limit);
}

void write_c(output & out, wide_string const & text, int encoding) {
    auto const bytes = encode(text, encoding);
    write_all(out, bytes, bytes.size());
    out.write(static_cast<unsigned char>(0));
}

uint32 written_size(wide_string const & text, int encoding, uint32 field_size, uint32 limit) {
    auto const size = cut(encode(text, encoding), limit);
    return std::max(field_size, static_cast<uint32>(std::min<std::size_t>(size, UINT32_MAX)));
}

bool read_line(input & in, basic::buffer<char> & line) {
    uint32 length = 0;
    bool ended = false;
    while (length < line.size()) {
        if (auto const held = lending::bytes(in); !held.empty()) {
            auto const at = length == 0 ? std::find_if_not(held.begin(), held.end(), ends_line) : held.begin();
            auto const most = std::min<std::size_t>(std::size_t(held.end() - at), line.size() - length);
            std::size_t const count = find_line_end(std::to_address(at), most);
            std::copy_n(at, count, line.data() + length);
            length += static_cast<uint32>(count);
            bool const line_end = count != most;
            lending::take(in, std::size_t(at - held.begin()) + count + line_end);
            if (line_end)
                break;
            continue;
        }
        char byte;
        if (in.read(&byte, 1) == 0) {
            ended = true;
            break;
        }
        if (!ends_line(byte))
            line[length++] = byte;
        else if (length > 0)
            break;
    }
    line.resize(length);
    return !ended;
}

} // namespace nio
