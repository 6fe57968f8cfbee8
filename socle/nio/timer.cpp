#include "socle/nio/timer.h"

#include "socle/platform/clock.h"

namespace nio {

uint64 timer::absolute() {
    uint64 value = 0;
    platform::QueryPerformanceCounter(value);
    return value;
}

uint64 timer::resolution() {
    uint64 units_per_second = 0;
    platform::QueryPerformanceFrequency(units_per_second);
    return units_per_second;
}

} // namespace nio
