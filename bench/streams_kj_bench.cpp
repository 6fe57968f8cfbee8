#include "bench/rows.h"

#include <kj/io.h>

namespace {

uint32 const size = bench::sized(16u << 20);

std::string & memory() {
    static std::string bytes(size, 'x');
    return bytes;
}

kj::ArrayPtr<kj::byte> bytes() { return {reinterpret_cast<kj::byte *>(memory().data()), size}; }

void read(benchmark::State & state) {
    for (auto _ : state) {
        kj::ArrayInputStream array(bytes());
        kj::BufferedInputStreamWrapper in(array);
        unsigned sum = 0;
        for (uint32 i = 0; i < size; ++i) {
            kj::byte byte;
            in.read(&byte, 1);
            sum += byte;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(static_cast<int64>(state.iterations() * size));
}

void write(benchmark::State & state) {
    for (auto _ : state) {
        kj::ArrayOutputStream array(bytes());
        kj::BufferedOutputStreamWrapper out(array);
        for (uint32 i = 0; i < size; ++i) {
            auto const byte = static_cast<kj::byte>(i);
            out.write(&byte, 1);
        }
    }
    state.SetItemsProcessed(static_cast<int64>(state.iterations() * size));
}

BENCHMARK(read)->Name("byte reads, 16 MiB/kj, BufferedInputStream");
BENCHMARK(write)->Name("byte writes, 16 MiB/kj, BufferedOutputStream");

} // namespace
