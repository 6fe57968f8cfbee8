#include "socle/nio/bit_input.h"

#include "socle/basic/internal/byte_order.h"
#include "socle/nio/lending_internal.h"

namespace nio {

bool bit_input<1, 0, 1>::read_until(int n) {
    while (count_ < n) {
        char byte = 0;
        if (count_ > max_peek || source_->read(&byte, 1) == 0)
            return false;
        auto const bits = static_cast<unsigned char>(byte);
        if (count_ >= 0)
            accumulator_ |= uint32{bits} << count_;
        else if (count_ > -8)
            accumulator_ = uint32{bits} >> -count_;
        count_ += 8;
    }
    return true;
}

bit_input<1, 0, 1>::run bit_input<1, 0, 1>::ahead() {
    if (auto const lent = lending::bytes(*source_); lent.size() >= sizeof(uint64) && count_ >= 0)
        return {accumulator_ | basic::load<uint64>(lent.data(), false) << count_, 64};
    if (!require(1))
        return {0, 0};
    return {accumulator_, count_};
}

void bit_input<1, 0, 1>::pass(int n) {
    if (n <= std::max(count_, 0)) {
        drop(n);
        return;
    }
    // The rest is in memory. Of its last byte some bits may be left.
    int const bytes = (n - count_ + 7) / 8;
    auto const last = lending::bytes(*source_)[static_cast<std::size_t>(bytes) - 1];
    count_ += 8 * bytes - n;
    accumulator_ = static_cast<unsigned char>(last) >> (8 - count_);
    lending::take(*source_, static_cast<uint64>(bytes));
}

} // namespace nio
