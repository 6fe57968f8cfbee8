// Boost.Iostreams beside the rows of files.

#include "bench/files_data.h"
#include "bench/jobs.h"

#include <boost/iostreams/copy.hpp>
#include <boost/iostreams/device/file_descriptor.hpp>
#include <boost/iostreams/stream.hpp>

#include <endian.h>

namespace {

namespace streams = boost::iostreams;
using source = streams::stream<streams::file_descriptor_source>;
using sink = streams::stream<streams::file_descriptor_sink>;

int const block = static_cast<int>(bench::file_block);

void read_bytes() {
    source in(streams::file_descriptor_source(bench::text_file()), block);
    unsigned sum = 0;
    for (int byte = in.get(); byte != -1; byte = in.get())
        sum += static_cast<unsigned>(byte);
    benchmark::DoNotOptimize(sum);
}

void write_bytes() {
    sink out(streams::file_descriptor_sink(bench::target_file()), block);
    for (uint32 i = 0; i < bench::file_size; ++i)
        out.put(static_cast<char>(i));
}

void read_lines() {
    source in(streams::file_descriptor_source(bench::text_file()), block);
    uint64 total = 0;
    for (std::string line; std::getline(in, line);)
        total += line.size();
    benchmark::DoNotOptimize(total);
}

void copy() {
    streams::copy(streams::file_descriptor_source(bench::large_file()),
                  streams::file_descriptor_sink(bench::target_file()), block);
}

uint64 records() {
    source in(streams::file_descriptor_source(bench::records_file()), block);
    bench::record_sum sum;
    struct {
        uint32 type, creator;
        uint16 flags, v, h, reserved;
    } next;
    while (in.read(reinterpret_cast<char *>(&next), sizeof next))
        sum.add(be32toh(next.type), be32toh(next.creator), be16toh(next.flags), static_cast<short>(be16toh(next.v)),
                static_cast<short>(be16toh(next.h)));
    return sum;
}

[[maybe_unused]] bool const registered = [] {
    using namespace bench;
    add_file_row(file_reads, "Boost.Iostreams", read_bytes, file_size);
    add_file_row(file_writes, "Boost.Iostreams", write_bytes, file_size);
    add_file_row(file_lines, "Boost.Iostreams, std::getline", read_lines, file_size);
    add_file_row(file_copies, "Boost.Iostreams", copy, copy_size);
    add(records_job(), "Boost.Iostreams", records);
    return true;
}();

} // namespace
