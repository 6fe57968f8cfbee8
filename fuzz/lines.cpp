/// Lines of the family nio, over sources that lend much, little and nothing.

#include "fuzz/support/feed.h"
#include "socle/nio/buffered_input.h"
#include "socle/nio/strings.h"
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
    nio_lines(data, sizes);
}
