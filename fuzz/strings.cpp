/// Text in streams: fields of fixed size and texts that a zero byte ends.

#include "socle/nio/strings.h"
#include "fuzz/support/feed.h"
#include "socle/basic/exception.h"
#include "socle/nio/buffered_input.h"
#include "socle/nio/encoding.h"
#include "socle/stream/vector_input.h"
#include "socle/stream/vector_output.h"
#include "tests/support/memory_sources.h"

namespace {

using fuzz::check;

/// Reads fields and zero-ended texts in turn, as the ways given say.
void read(fuzz::feed ways, std::string_view data) {
    byte_vector const bytes = fuzz::vector_of(data);
    stream::vector_input memory(bytes);
    support::unlent plain(data), beneath(data);
    nio::buffered_input buffer(beneath, 4);
    nio::input * const sources[] = {&memory, &plain, &buffer};
    std::size_t at = 0;
    while (!ways.empty()) {
        bool const zero_ended = ways.flag(), stop = ways.flag();
        int const encoding = int(ways.below(3)) - 3;
        uint32 const length = ways.byte(), field = ways.byte();
        auto const left = data.substr(at);
        bool const refused = !zero_ended && left.size() < length;
        auto text = zero_ended ? left.substr(0, left.find('\0')) : left.substr(0, length);
        std::size_t const size = zero_ended ? text.size() + 1 : std::max(length, field);
        if (stop && !zero_ended)
            text = text.substr(0, text.find('\0'));
        at += std::min(refused ? std::size_t(length) : size, left.size());
        wide_string const expected = nio::decode(narrow_string(text), encoding);
        for (auto * in : sources) {
            try {
                check((zero_ended ? nio::read_c(*in, encoding) : nio::read(*in, encoding, length, field, stop))
                      == expected);
                check(!refused);
            } catch (basic::exception const & e) {
                check(refused && e.message() == "input stream is too short to complete a string");
            }
            check(in->tell() == at);
        }
    }
}

/// What is written takes the size that is told, and is read again.
void write(fuzz::feed in) {
    byte_vector bytes;
    stream::vector_output out(bytes);
    while (!in.empty()) {
        int const encoding = int(in.below(3)) - 3;
        uint32 const field = in.byte(), limit = in.byte();
        wide_string const text = in.wide_text();
        narrow_string const encoded = nio::encode(text, encoding);
        narrow_string kept = limit != 0 ? encoded.substr(0, limit) : encoded;

        auto const start = bytes.size();
        nio::write(out, text, encoding, field, limit);
        auto const size = static_cast<uint32>(bytes.size() - start);
        check(size == nio::written_size(text, encoding, field, limit));
        check(size == std::max<std::size_t>(field, kept.size()));
        stream::vector_input back(bytes, static_cast<uint32>(start));
        kept.resize(size);
        check(nio::read_string(back, size, 0, false) == kept && back.tell() == bytes.size());

        auto const c_start = static_cast<uint32>(bytes.size());
        nio::write_c(out, text, encoding);
        stream::vector_input c_back(bytes, c_start);
        check(bytes.size() == c_start + encoded.size() + 1 && bytes.back() == 0);
        check(nio::read_c(c_back, encoding) == nio::decode(encoded.substr(0, encoded.find('\0')), encoding));
    }
}

} // namespace

void fuzz::run(std::string_view input) {
    feed in(input);
    narrow_string const ways = in.text();
    read(feed(ways), in.rest());
    write(feed(input));
}
