#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

namespace un {

/// A stopwatch on the machine's high-resolution counter: sums up the stretches in which it runs. A plain value.
///
/// Every operation that reads the counter throws `un::exception` "cannot query the timer" where the host fails it.
class SOCLE_API timer {
public:
    /// Runs from now on, or waits to be started.
    explicit timer(bool running = true);

    /// The current value of the counter; also a plain source of a number that changes fast. From any thread.
    static uint64 absolute();
    /// Counts in a second.
    static uint64 resolution();

    /// Begins a stretch; nothing if one runs already.
    void start();
    /// Ends the stretch and adds it to the sum; nothing if none runs.
    void stop();
    /// Clears the sum alone: a stretch that runs still counts, from where it began.
    void reset();
    /// Lets the stretch that runs begin now, which throws away what it had.
    void mark();

    /// The sum so far in counts; a stretch that runs goes into it and begins anew.
    uint64 units();
    /// The same in milliseconds. A little high where the counts in a second are not a multiple of 1000.
    uint64 ms();

protected:
    /// Counts since the stretch began.
    uint64 elapsed() const;

    /// Read from the host when the library is loaded, which fails with "cannot initialize the timer" if it has none.
    static uint64 units_per_second;

private:
    bool running_;
    uint64 accumulated_ = 0;
    uint64 last_mark_ = 0;
};

} // namespace un
