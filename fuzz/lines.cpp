/// Lines of both families, over sources that lend much, little and nothing.

#include "fuzz/support/chains.h"
#include "fuzz/support/feed.h"
#include "socle/nio/buffered_input.h"
#include "socle/nio/strings.h"
#include "socle/stream/buffered_input.h"
#include "socle/stream/line_input.h"
#include "socle/stream/vector_input.h"
#include "tests/support/memory_sources.h"

#include <vector>

namespace {

using fuzz::check;

bool ends_line(char byte) { return byte == '\r' || byte == '\n'; }

struct taken {
    narrow_string line;
    bool met_end = false;
};

/// Takes a line of at most `most` bytes.
taken plain_line(std::string_view data, std::size_t & at, std::size_t most) {
    taken result;
    while (result.line.size() < most) {
        if (at == data.size()) {
            result.met_end = true;
            break;
        }
        char const byte = data[at++];
        if (!ends_line(byte))
            result.line += byte;
        else if (!result.line.empty())
            break;
    }
    return result;
}

uint32 const no_line = 0xFFFFFFFF;

void stream_lines(std::string_view data, std::string_view sizes) {
    byte_vector const bytes = fuzz::vector_of(data);
    stream::vector_input memory(bytes);
    support::drops plain(data), beneath(data);
    stream::buffered_input buffer(beneath, 4);
    stream::line_input ours[] = {stream::line_input(memory), stream::line_input(plain), stream::line_input(buffer)};
    support::drops asked(data);
    fuzz::callers<stream::line_input> callers(asked);
    stream::line_input * const readers[] = {&ours[0], &ours[1], &ours[2], &callers};
    std::size_t at = 0;
    bool more = true;
    for (std::size_t turn = 0; more; ++turn) {
        uint32 const size = turn < sizes.size() ? static_cast<unsigned char>(sizes[turn]) : 0;
        // Small sizes are room for a buffer, others the forms that take whole lines.
        bool const whole = size >= 100 || turn >= sizes.size();
        auto const [expected, met_end] = plain_line(data, at, whole ? data.size() + 1 : size > 0 ? size - 1 : 0);
        more = !met_end || !expected.empty();
        for (auto * in : readers) {
            if (!whole) {
                std::vector<char> room(size);
                uint32 const length = in->read_line(room.data(), size);
                if (size > 0)
                    check(room[more ? length : 0] == '\0');
                check(length == (more ? expected.size() : no_line));
                check(!more || std::equal(expected.begin(), expected.end(), room.begin()));
            } else if (size % 3 == 2) {
                narrow_string line = "used before";
                check(in->read_line(line) == (more ? expected.size() : no_line) && line == expected);
            } else if (size % 2 != 0) {
                check(in->read_line() == expected);
            } else {
                byte_vector line(3);
                check(in->read_line(line) == (more ? expected.size() : no_line) && line == fuzz::vector_of(expected));
            }
            check(in->tell() == at);
        }
    }
}

void nio_lines(std::string_view data, std::string_view sizes) {
    byte_vector const bytes = fuzz::vector_of(data);
    stream::vector_input memory(bytes);
    support::drops plain(data), beneath(data);
    nio::buffered_input buffer(beneath, 4);
    nio::input * const sources[] = {&memory, &plain, &buffer};
    std::size_t at = 0;
    for (std::size_t turn = 0; at < data.size(); ++turn) {
        uint32 const size = turn < sizes.size() ? static_cast<unsigned char>(sizes[turn]) : 300;
        auto const [expected, met_end] = plain_line(data, at, size);
        for (auto * in : sources) {
            basic::buffer<char> line(size);
            check(nio::read_line(*in, line) == !met_end);
            check(narrow_string(line.data(), line.size()) == expected);
            check(in->tell() == at);
        }
    }
}

} // namespace

void fuzz::run(std::string_view input) {
    feed in(input);
    narrow_string const sizes = in.text();
    auto const data = in.rest();
    stream_lines(data, sizes);
    nio_lines(data, sizes);
}
