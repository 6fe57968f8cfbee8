#include "socle/algorithm/random.h"

#include "socle/un/timer.h"

namespace algorithm::random {

namespace {

constexpr uint64 multiplier = 0x5DEECE66D;
constexpr uint64 increment = 11;
constexpr uint32 state_bits = 48;
constexpr uint64 state_mask = (uint64{1} << state_bits) - 1;

} // namespace

uint32 timer_source::bits(uint32 count) { return static_cast<uint32>(word() & ((uint64{1} << count) - 1)); }

uint32 timer_source::word() { return static_cast<uint32>(un::timer::absolute()); }

java_generator::java_generator() : java_generator(timer_source().word()) {}

java_generator::java_generator(uint64 state) : generator(state) {}

void java_generator::seed(uint64 seed) { state((seed ^ multiplier) & state_mask); }

uint32 java_generator::next(uint32 count) {
    state((state() * multiplier + increment) & state_mask);
    return static_cast<uint32>(state() >> (state_bits - count));
}

uint32 java_generator::next_word() { return next(32); }

void java_generator::fill(unsigned char * bytes, uint32 count) {
    uint32 word = 0;
    for (uint32 i = 0; i < count; ++i, word >>= 8) {
        if (i % 4 == 0)
            word = next_word();
        bytes[i] = static_cast<unsigned char>(word);
    }
}

} // namespace algorithm::random
