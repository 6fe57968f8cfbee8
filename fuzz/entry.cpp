#include "fuzz/support/feed.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size);

/// What the fuzzing engine calls.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    fuzz::run({reinterpret_cast<char const *>(data), size});
    return 0;
}
