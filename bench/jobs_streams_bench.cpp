// Records, numbers and code pages: whole files through the streams.

#include "bench/codec_data.h"
#include "bench/jobs.h"
#include "socle/io/fork_input.h"
#include "socle/io/fork_output.h"
#include "socle/io/mac/info.h"
#include "socle/io/open_fork.h"
#include "socle/nio/encoding.h"
#include "socle/stream/buffered_input.h"
#include "socle/stream/line_input.h"
#include "socle/un/digits.h"
#include "socle/un/parser.h"
#include "socle/un/tokenizer.h"

#include <charconv>
#include <cstring>
#include <endian.h>
#include <iconv.h>
#include <vector>

namespace {

using bench::host_file;

uint32 const block = 64 << 10;

uint32 const record_count = bench::sized(100'000);
uint32 const number_bytes = bench::sized(100'000'000);
uint32 const page_bytes = bench::sized(64u << 20);

/// Calls `act` with a file as a stream.
template <class Act>
uint64 with_input(std::string const & path, Act act) {
    io::file file = bench::file_at(path);
    io::open_fork const opened(file.data_fork());
    io::fork_input fork(*opened);
    stream::buffered_input in(fork, block);
    return act(in);
}

template <class Value>
Value loaded(char const * at) {
    Value value;
    std::memcpy(&value, at, sizeof value);
    if constexpr (sizeof value == 2)
        return static_cast<Value>(be16toh(value));
    else
        return be32toh(value);
}

uint64 records_plain() {
    host_file const in(bench::records_file(), O_RDONLY);
    std::vector<char> bytes(block);
    bench::record_sum sum;
    for (ssize_t got; (got = read(in, bytes.data(), block)) > 0;)
        for (char const * at = bytes.data(); at != bytes.data() + got; at += 16)
            sum.add(loaded<uint32>(at), loaded<uint32>(at + 4), loaded<uint16>(at + 8), loaded<short>(at + 10),
                    loaded<short>(at + 12));
    return sum;
}

uint64 records_socle() {
    return with_input(bench::records_file(), [](stream::buffered_input & in) {
        bench::record_sum sum;
        io::mac::file_info info;
        for (uint32 i = 0; i < record_count; ++i) {
            info.read(in, true);
            sum.add(info.type.value, info.creator.value, info.flags, info.location.v, info.location.h);
        }
        return sum;
    });
}

uint64 records_ifstream() {
    std::ifstream in(bench::records_file(), std::ios::binary);
    bench::record_sum sum;
    for (char at[16]; in.read(at, sizeof at);)
        sum.add(loaded<uint32>(at), loaded<uint32>(at + 4), loaded<uint16>(at + 8), loaded<short>(at + 10),
                loaded<short>(at + 12));
    return sum;
}

uint64 numbers_plain() {
    std::ifstream in(bench::numbers_file(), std::ios::binary);
    uint64 sum = 0;
    for (std::string line; std::getline(in, line);) {
        char const * const end = line.data() + line.size();
        for (char const * at = line.data(); at < end; ++at) {
            uint64 value = 0;
            at = std::from_chars(at, end, value).ptr;
            sum = sum * 31 + value;
        }
    }
    return sum;
}

/// Calls `act` with each line of the numbers.
template <class Act>
uint64 each_line(Act act) {
    return with_input(bench::numbers_file(), [&](stream::buffered_input & in) {
        stream::line_input lines(in);
        uint64 sum = 0;
        for (narrow_string line; lines.read_line(line) != 0xFFFFFFFF;)
            act(line, sum);
        return sum;
    });
}

uint64 numbers_parser() {
    return each_line([](narrow_string const & line, uint64 & sum) {
        for (un::parser parser(line, 0); !parser.eos(); parser.skip_through(" "))
            sum = sum * 31 + parser.number(10);
    });
}

uint64 numbers_tokenizer() {
    return each_line([](narrow_string const & line, uint64 & sum) {
        for (narrow_string const & token : un::tokenizer(line, ' '))
            sum = sum * 31 + un::read(token, 10);
    });
}

uint64 conversion_plain() {
    host_file const in(bench::page_file(), O_RDONLY), out(bench::utf8_file(), O_WRONLY | O_CREAT | O_TRUNC);
    iconv_t const handle = iconv_open("UTF-8", "CP932");
    std::vector<char> bytes(block), text(2 * block);
    std::size_t kept = 0; // of a character that a block has cut
    for (ssize_t got; (got = read(in, bytes.data() + kept, block - kept)) > 0;) {
        char *from = bytes.data(), *to = text.data();
        std::size_t left = kept + static_cast<std::size_t>(got), room = text.size();
        iconv(handle, &from, &left, &to, &room);
        benchmark::DoNotOptimize(write(out, text.data(), text.size() - room));
        std::memmove(bytes.data(), from, left);
        kept = left;
    }
    iconv_close(handle);
    return 0;
}

/// Blocks of whole lines, for a block may end in the middle of a character.
uint64 conversion_socle() {
    io::file from = bench::file_at(bench::page_file()), to = bench::file_at(bench::utf8_file());
    io::open_fork const in(from.data_fork()), out(to.data_fork(), io::fork::create_always);
    io::fork_output target(*out);
    narrow_string bytes;
    for (std::size_t kept = 0;;) {
        bytes.resize(block);
        uint32 const got = in->read(bytes.data() + kept, static_cast<uint32>(block - kept));
        bytes.resize(kept + got);
        narrow_string rest;
        if (got > 0) {
            rest = bytes.substr(bytes.rfind('\n') + 1);
            bytes.resize(bytes.size() - rest.size());
        }
        target.write(nio::encode(nio::decode(bytes, 932), nio::encodings::utf8));
        if (got == 0)
            return 0;
        kept = rest.size();
        bytes = std::move(rest);
    }
}

std::string content(std::string const & path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

[[maybe_unused]] bool const registered = [] {
    using namespace bench;
    job const records = records_job(), numbers = numbers_job(), conversion = conversion_job();
    add(records, "limit: read(2) and loads", records_plain);
    add(records, "socle, buffered_input and file_info", records_socle);
    add(records, "ifstream::read and loads", records_ifstream);
    add(numbers, "limit: std::getline and from_chars", numbers_plain);
    add(numbers, "socle, line_input and parser", numbers_parser);
    add(numbers, "socle, line_input and tokenizer", numbers_tokenizer);
    add(conversion, "limit: read(2), iconv and write(2)", conversion_plain);
    add(conversion, "socle, decode and encode", conversion_socle);
    return true;
}();

} // namespace

namespace bench {

job records_job() { return {"job: read 100,000 Finder records of a file", record_count, records_plain}; }

std::string const & records_file() {
    static std::string const path = [] {
        std::string bytes(record_count * 16u, '\0');
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = i % 16 < 14 ? static_cast<char>(i * 2654435761u >> 24) : '\0';
        return scratch::folder().file("records", bytes);
    }();
    return path;
}

job numbers_job() { return {"job: sum the numbers of a text of 100 MB", number_bytes, numbers_plain}; }

std::string const & numbers_file() {
    static std::string const path = [] {
        std::string text;
        uint64 seed = 1;
        for (uint32 i = 1; text.size() < number_bytes; ++i) {
            seed = seed * 6364136223846793005u + 1442695040888963407u;
            text += std::to_string((seed >> 32) % (i % 3 == 0 ? 1000 : 4'000'000'000u)) + (i % 8 == 0 ? '\n' : ' ');
        }
        text.back() = '\n';
        return scratch::folder().file("numbers", text);
    }();
    return path;
}

job conversion_job() {
    return {"job: page 932 to UTF-8, a file of 64 MiB", page_bytes, conversion_plain,
            [] { return uint64(std::hash<std::string>()(content(utf8_file()))); }};
}

std::string const & page_file() {
    static std::string const path = [] {
        std::string const line = nio::encode(codec_data::cjk().substr(0, 1000), 932) + " 0123456789 and so on\n";
        std::string text;
        text.reserve(page_bytes + line.size());
        while (text.size() < page_bytes)
            text += line;
        return scratch::folder().file("page", text);
    }();
    return path;
}

std::string utf8_file() { return scratch::folder().path("utf8").string(); }

} // namespace bench
