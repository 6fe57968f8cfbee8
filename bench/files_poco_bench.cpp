// Poco beside the rows of files, walks, paths and numbers.

#include "bench/files_data.h"
#include "bench/jobs.h"
#include "bench/paths_data.h"
#include "bench/pieces_data.h"
#include "bench/text_data.h"
#include "bench/walk_data.h"

#include <Poco/BinaryReader.h>
#include <Poco/File.h>
#include <Poco/FileStream.h>
#include <Poco/NumberFormatter.h>
#include <Poco/NumberParser.h>
#include <Poco/Path.h>
#include <Poco/RecursiveDirectoryIterator.h>
#include <Poco/StringTokenizer.h>
#include <Poco/Timestamp.h>

namespace {

void read_bytes() {
    Poco::FileInputStream in(bench::text_file());
    unsigned sum = 0;
    for (int byte = in.get(); byte != -1; byte = in.get())
        sum += static_cast<unsigned>(byte);
    benchmark::DoNotOptimize(sum);
}

void write_bytes() {
    Poco::FileOutputStream out(bench::target_file());
    for (uint32 i = 0; i < bench::file_size; ++i)
        out.put(static_cast<char>(i));
}

void read_lines() {
    Poco::FileInputStream in(bench::text_file());
    uint64 total = 0;
    for (std::string line; std::getline(in, line);)
        total += line.size();
    benchmark::DoNotOptimize(total);
}

void copy() { Poco::File(bench::large_file()).copyTo(bench::target_file()); }

uint64 records() {
    Poco::FileInputStream stream(bench::records_file());
    Poco::BinaryReader in(stream, Poco::BinaryReader::BIG_ENDIAN_BYTE_ORDER);
    bench::record_sum sum;
    for (;;) {
        Poco::UInt32 type, creator;
        Poco::UInt16 flags, reserved;
        Poco::Int16 v, h;
        in >> type >> creator >> flags >> v >> h >> reserved;
        if (!in.good())
            return sum;
        sum.add(type, creator, flags, v, h);
    }
}

uint64 numbers() {
    Poco::FileInputStream in(bench::numbers_file());
    uint64 sum = 0;
    for (std::string line; std::getline(in, line);)
        for (std::string const & token : Poco::StringTokenizer(line, " "))
            sum = sum * 31 + Poco::NumberParser::parseUnsigned64(token);
    return sum;
}

void walk(benchmark::State & state, bool attributes) {
    bench::meter const meter;
    for (auto _ : state) {
        uint64 found = 0;
        Poco::SimpleRecursiveDirectoryIterator const end;
        for (Poco::SimpleRecursiveDirectoryIterator entry(bench::walk_tree().string()); entry != end; ++entry) {
            bool const file = entry->isFile();
            found += file;
            if (attributes && file) {
                benchmark::DoNotOptimize(entry->getSize());
                benchmark::DoNotOptimize(entry->getLastModified());
            }
        }
        benchmark::DoNotOptimize(found);
    }
    meter.done(state, uint64(bench::walk_folders) * bench::walk_files);
}

void cut(benchmark::State & state) {
    auto const all = bench::host_paths();
    bench::meter const meter;
    for (auto _ : state)
        for (auto const & text : all)
            benchmark::DoNotOptimize(Poco::Path(text));
    meter.done(state, all.size());
}

void join(benchmark::State & state) {
    std::vector<Poco::Path> all;
    for (auto const & text : bench::host_paths())
        all.emplace_back(text);
    bench::meter const meter;
    for (auto _ : state)
        for (auto const & path : all)
            benchmark::DoNotOptimize(path.toString());
    meter.done(state, all.size());
}

[[maybe_unused]] bool const registered = [] {
    using namespace bench;
    using benchmark::State;
    add_file_row(file_reads, "Poco::FileInputStream", read_bytes, file_size);
    add_file_row(file_writes, "Poco::FileOutputStream", write_bytes, file_size);
    add_file_row(file_lines, "Poco::FileInputStream", read_lines, file_size);
    add_file_row(file_copies, "Poco::File::copyTo", copy, copy_size);
    add(records_job(), "Poco::BinaryReader", records);
    add(numbers_job(), "Poco, tokenizer and parser", numbers);
    bench::add(walk_row(false), "Poco", walk, false);
    bench::add(walk_row(true), "Poco, size and time", walk, true);
    bench::add("cut a path", "Poco::Path", cut);
    bench::add("join a path", "Poco::Path", join);
    bench::add(parsing, "Poco::NumberParser", [](State & state) {
        parse(state, [](std::string const & text) { return Poco::NumberParser::parseUnsigned64(text); });
    });
    bench::add(formatting, "Poco::NumberFormatter", [](State & state) {
        format(state, [](uint64 value) { return Poco::NumberFormatter::format(Poco::UInt64(value)); });
    });
    add_path(exists_row, "Poco::File", [](std::string const & path) { return Poco::File(path).exists(); });
    add_path(folder_row, "Poco::File", [](std::string const & path) { return !Poco::File(path).isDirectory(); });
    return true;
}();

} // namespace
