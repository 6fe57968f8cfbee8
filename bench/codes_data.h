#pragma once

#include "bench/rows.h"

#include <random>
#include <vector>

namespace bench {

/// 1,000,000 values from 0 to 2^63 - 1 whose bit lengths are evenly spread.
inline std::vector<int64> const & spread_values() {
    static std::vector<int64> const values = [] {
        std::mt19937_64 random(1);
        std::vector<int64> made(sized(1'000'000));
        for (auto & value : made) {
            uint64 const bits = random() | uint64{1} << 63;
            value = static_cast<int64>(bits >> (1 + random() % 63));
        }
        return made;
    }();
    return values;
}

} // namespace bench
