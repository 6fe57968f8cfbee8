#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

namespace un {

/// A stopwatch on the machine's high-resolution counter: it sums the intervals in which it runs. A plain value.
///
/// Every operation that reads the counter throws `un::exception` "cannot query the timer" where the system cannot read
/// it.
class SOCLE_API timer {
public:
    /// Starts at once, or waits for `start()`.
    explicit timer(bool running = true);

    /// The current value of the counter. May be called from any thread.
    static uint64 absolute();
    /// Counts in a second.
    static uint64 resolution();

    /// Starts an interval; does nothing if one runs already.
    void start();
    /// Ends the interval and adds it to the sum; does nothing if none runs.
    void stop();
    /// Clears the sum alone: an interval that runs still counts, from where it began.
    void reset();
    /// Restarts the interval that runs, which drops what it had.
    void mark();

    /// The sum so far in counts; an interval that runs is added and starts anew.
    uint64 units();
    /// The sum in milliseconds; a little high where the counts in a second are not a multiple of 1000.
    uint64 ms();

protected:
    /// Counts since the interval began.
    uint64 elapsed() const;

    /// Counts in a second, read when the library is loaded; loading fails with "cannot initialize the timer" if the
    /// system has no counter.
    static uint64 units_per_second;

private:
    bool running_;
    uint64 accumulated_ = 0;
    uint64 last_mark_ = 0;
};

} // namespace un
