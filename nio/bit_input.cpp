#include "nio/bit_input.h"

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

} // namespace nio
