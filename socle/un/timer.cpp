#include "socle/un/timer.h"

#include "socle/platform/clock.h"
#include "socle/un/exception.h"

namespace un {

timer::timer(bool running) : running_(running) {
    if (running_)
        last_mark_ = absolute();
}

uint64 timer::absolute() {
    uint64 value = 0;
    if (!platform::QueryPerformanceCounter(value))
        throw exception("cannot query the timer", "un");
    return value;
}

uint64 timer::resolution() { return units_per_second; }

void timer::start() {
    if (running_)
        return;
    last_mark_ = absolute();
    running_ = true;
}

void timer::stop() {
    if (!running_)
        return;
    accumulated_ += elapsed();
    running_ = false;
}

void timer::reset() { accumulated_ = 0; }

void timer::mark() { last_mark_ = absolute(); }

uint64 timer::units() {
    if (running_) {
        accumulated_ += elapsed();
        last_mark_ = absolute();
    }
    return accumulated_;
}

uint64 timer::ms() { return units() / (units_per_second / 1000); }

uint64 timer::elapsed() const { return absolute() - last_mark_; }

} // namespace un
