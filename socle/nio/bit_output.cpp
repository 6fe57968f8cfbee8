#include "socle/nio/bit_output.h"

#include "socle/nio/lending_internal.h"

#include <algorithm>

namespace nio {

namespace {
/// One below the accumulator's width: as soon as another bit would fill it, whole bytes go out.
constexpr int max_held = 31;
} // namespace

void bit_output<1, 0>::put_bits(uint64 bits, int n) {
    while (n > 0) {
        if (count_ >= max_held)
            drain();
        int const taken = std::min(n, count_ < 0 ? -count_ : max_held - count_);
        if (count_ >= 0)
            accumulator_ |= static_cast<uint32>(bits & ((uint64{1} << taken) - 1)) << count_;
        count_ += taken;
        bits = taken < 64 ? bits >> taken : 0;
        n -= taken;
    }
}

void bit_output<1, 0>::drain() {
    if (count_ < 8)
        return;
    auto const whole = static_cast<std::size_t>(count_ / 8);
    if (auto const room = lending::room(*target_); room.size() >= whole) {
        for (std::size_t i = 0; i < whole; ++i, accumulator_ >>= 8)
            room[i] = static_cast<char>(accumulator_);
        count_ %= 8;
        lending::use(*target_, whole);
        return;
    }
    while (count_ >= 8)
        put_byte();
}

void bit_output<1, 0>::put_byte() {
    char const byte = static_cast<char>(accumulator_ & 0xFF);
    target_->write(&byte, 1);
    accumulator_ >>= 8;
    count_ -= 8;
}

void bit_output<1, 0>::finish() {
    drain();
    if (count_ > 0)
        put_byte();
    count_ = 0;
}

} // namespace nio
