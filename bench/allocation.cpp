// The heap of this program, with a count of what is asked of it.

#include "bench/rows.h"

#include <atomic>
#include <new>

namespace {

std::atomic<uint64> asked = 0;

} // namespace

uint64 bench::allocated() noexcept { return asked.load(std::memory_order_relaxed); }

void * operator new(std::size_t size) {
    // No atomic addition, whose lock would be measured too: the benchmarks run in one thread.
    asked.store(asked.load(std::memory_order_relaxed) + size, std::memory_order_relaxed);
    if (void * const place = std::malloc(size == 0 ? 1 : size))
        return place;
    throw std::bad_alloc();
}

void operator delete(void * place) noexcept { std::free(place); }
void operator delete(void * place, std::size_t) noexcept { std::free(place); }
