// Runs one hot path, named by the argument, on a fixed input, so that its instructions can be counted. "nothing" makes
// the inputs alone.

#include "socle/algorithm/crc.h"
#include "socle/any/string.h"
#include "socle/nio/integer_codes.h"
#include "socle/nio/utf8_internal.h"
#include "socle/stream/array_input.h"
#include "socle/stream/array_output.h"
#include "socle/stream/buffered_input.h"
#include "socle/stream/buffered_output.h"
#include "socle/stream/copier.h"
#include "socle/stream/integers.h"
#include "socle/stream/line_input.h"
#include "socle/un/digits.h"
#include "socle/un/tokenizer.h"

#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace {

uint32 const size = 120'000, block = 4096;

std::string const text = [] {
    std::string made;
    while (made.size() < size)
        made += "a line of a text, of words and commas, about as long as lines are\n";
    made.resize(size);
    return made;
}();

std::string const mixed = [] {
    std::string made;
    while (made.size() < size)
        made += "des caract\xC3\xA8res vari\xC3\xA9s, \xE7\x8C\xAB\xE3\x81\xA7\xE3\x81\x82\xE3\x82\x8B\xE3\x80\x82 "
                "\xE2\x82\xAC 5";
    return made;
}();

std::string memory(size, '\0');
uint64 sum = 0;

template <class Act>
void with_input(Act act) {
    stream::array_input from(text.data(), size);
    stream::buffered_input in(from, block);
    act(in);
}

template <class Act>
void with_output(Act act) {
    stream::array_output to(memory.data(), size);
    stream::buffered_output out(to, block);
    act(out);
}

/// From UTF-8, and back.
void recode(std::string const & bytes, platform::utf8_blocks const * blocks) {
    wide_string wide;
    nio::utf8::decode(bytes, wide, true, blocks);
    narrow_string narrow;
    nio::utf8::encode(wide, narrow, blocks);
    sum += narrow.size();
}

/// Each takes `size` bytes, or makes them.
std::map<std::string, std::function<void()>> const kernels = {
    {"nothing", [] {}},
    {"byte-reads",
     [] {
         with_input([](stream::input & in) {
             for (int byte = in.read(); byte != -1; byte = in.read())
                 sum += static_cast<unsigned>(byte);
         });
     }},
    {"byte-writes",
     [] {
         with_output([](stream::output & out) {
             for (uint32 i = 0; i < size; ++i)
                 out.write(static_cast<char>(i));
         });
     }},
    {"integer-reads",
     [] {
         with_input([](stream::input & beneath) {
             stream::big_endian_input in(beneath);
             for (uint32 i = 0; i < size / 4; ++i)
                 sum += in.read32();
         });
     }},
    {"integer-writes",
     [] {
         with_output([](stream::output & beneath) {
             stream::big_endian_output out(beneath);
             for (uint32 i = 0; i < size / 4; ++i)
                 out.write32(i);
         });
     }},
    {"integer-runs",
     [] {
         with_input([](stream::input & beneath) {
             with_output([&](stream::output & to) {
                 stream::big_endian_input in(beneath);
                 stream::big_endian_output out(to);
                 std::vector<uint32> values(size / 4);
                 stream::read_integers(in, values);
                 stream::write_integers(out, values);
             });
         });
     }},
    {"lines",
     [] {
         with_input([](stream::input & beneath) {
             stream::line_input in(beneath);
             char line[256];
             for (uint32 length; (length = in.read_line(line, sizeof line)) != 0xFFFFFFFF;)
                 sum += length;
         });
     }},
    {"crc",
     [] {
         algorithm::crc::xmodem crc;
         crc.update(reinterpret_cast<unsigned char const *>(text.data()), size);
         sum += crc.state();
     }},
    {"copies",
     [] {
         stream::array_input from(text.data(), size);
         stream::array_output to(memory.data(), size);
         sum += stream::copier(block).process(from, to);
     }},
    {"wz",
     [] {
         with_output([](stream::output & out) {
             for (int64 i = 0; i < size / 4; ++i)
                 nio::write_wz(i * 100, out);
         });
         stream::array_input in(memory.data(), size);
         for (uint32 i = 0; i < size / 4; ++i)
             sum += static_cast<uint64>(nio::read_wz(in));
     }},
    {"utf8", [] { recode(text, platform::find_utf8_blocks()); }},
    {"utf8-mixed", [] { recode(mixed, platform::find_utf8_blocks()); }},
    {"utf8-plain", [] { recode(mixed, nullptr); }},
    {"match",
     [] {
         any::string const name(u"some name with an ending.text"), pattern(u"*a*e*.text");
         for (uint32 i = 0; i < size / 29; ++i)
             sum += name.pattern_match(pattern);
     }},
    {"split", [] { sum += un::tokenizer(text, ',').size(); }},
    {"numbers",
     [] {
         for (uint32 i = 0; i < size / 10; ++i)
             sum += un::read(un::write(1'000'000'000u + i, 10, 0), 10);
     }},
};

} // namespace

int main(int argc, char ** argv) {
    auto const kernel = argc == 2 ? kernels.find(argv[1]) : kernels.end();
    if (kernel == kernels.end())
        return 1;
    kernel->second();
    std::printf("%llu\n", static_cast<unsigned long long>(sum));
    return 0;
}
