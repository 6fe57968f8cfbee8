#pragma once

#include "tests/support/elsewhere.h"
#include "tests/support/scratch.h"

#include <cstddef>
#include <span>
#include <string>

/// Scenarios in which one call to the host or one allocation fails, or the process ends before the call.
namespace faults {

/// Where a scenario works: a folder, one on another file system, and the drives N: and M: in the folders "n" and "m",
/// whose files have named streams.
class place {
public:
    place();
    ~place();

    scratch here;
    elsewhere there;

    /// Attaches both drives anew; false where streams cannot be kept.
    bool attach() const;

    /// Whether the host gives this machine both.
    bool two_file_systems() const { return there.differs_from(here); }
    bool streams() const { return streams_; }

private:
    bool streams_;
};

/// What may be there after a fault, beside all that was there before and all that the work makes of it.
enum class promise {
    /// Nothing else: it is all as before, or all done. Where the process ends, each file is as before or done, and no
    /// bytes that the work only carries are lost.
    whole,
    /// Each file by itself is as before or done.
    stepwise,
    /// A file may also be the start of what it would be, with all that was reported as written.
    growing,
};

/// Bytes that were reported as written.
using report = std::size_t;

struct scenario {
    char const * name;
    promise kept;
    void (*prepare)(place const &);
    /// Does the work and tells whether all of it was done; it may throw what the library throws.
    bool (*act)(place const &, report &);
    enum needs { nothing, another_file_system, named_streams } needed = nothing;
    /// Whether doing it once more makes up for whatever a fault has left.
    bool made_up_for = false;
    /// Whether no streams may be left that no file claims, whatever happens.
    bool leaves_no_orphans = false;
};

std::span<scenario const> file_scenarios();
std::span<scenario const> folder_scenarios();
std::span<scenario const> memory_scenarios();
std::span<scenario const> example_scenarios();
std::span<scenario const> catalog_scenarios();

/// Nothing fails while this lives.
class uncounted {
public:
    uncounted();
    uncounted(uncounted const &) = delete;
    uncounted & operator=(uncounted const &) = delete;
    ~uncounted();

private:
    int (*fault_)(char const * call);
    int allocations_;
};

/// Makes a stream of a file, in place of one that is there.
void put_stream(wide_string const & path, std::string const & bytes);

/// Fails the test from within a scenario, whose calls are not counted then.
void check(bool good, char const * what);

} // namespace faults
