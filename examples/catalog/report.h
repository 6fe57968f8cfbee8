#pragma once

#include "common/failure.h"
#include "common/progress.h"

#include <map>

/// Tells how the work goes: the bar, a line for each thing that is not, or not wholly, where it should be, and a
/// summary that counts these by kind.
class report {
public:
    /// `typed` is what the user calls the folder `root` of the library. A quiet one has complaints only.
    report(narrow_string const & typed, wide_string const & root, bool quiet);

    progress & bar() { return bar_; }
    /// What the user calls a path below the root.
    narrow_string name(wide_string const & path) const;

    /// Up to the first colon, the words tell the kind of complaint.
    void complain(wide_string const & path, narrow_string const & words);
    /// Something of an entry was not carried, and nobody has asked for it.
    void leave_out(narrow_string const & kind);
    /// The same of what nobody can expect of this run: it is counted, and no failure.
    void leave_behind(narrow_string const & kind) { ++left_behind_[kind]; }
    /// A name that the target could not have.
    void change_name() { ++names_changed_; }

    /// Does some of the work on the entry; false, with a complaint, if that throws.
    template <class Work>
    bool attempt(wide_string const & path, Work work) {
        try {
            work();
            return true;
        } catch (...) {
            complain(path, current_failure());
        }
        return false;
    }

    uint64 files = 0, folders = 0, others = 0, skipped = 0;
    uint64 carried = 0, there_already = 0, replaced = 0;

    /// Whether all is where it should be.
    bool good() const { return complaints_.empty() && left_out_.empty(); }
    void show(bool carrying, bool dry) const;

private:
    narrow_string typed_;
    wide_string root_;
    bool quiet_;
    progress bar_;
    std::map<narrow_string, uint64> complaints_, left_out_, left_behind_;
    uint64 names_changed_ = 0;
};
