#pragma once

#include <socle/basic/types.h>

#include <set>
#include <vector>

/// How a folder keeps the forks and the Finder information of its files.
enum class fork_form { sidecar, apple_double, stream };

/// Where a file at `path`, which may be a leaf alone, keeps its resource fork and its Finder information. In streams
/// they have no names of their own.
wide_string rsrc_name(fork_form form, wide_string const & path);
wide_string info_name(fork_form form, wide_string const & path);

/// The names that what is in a folder gets in another: the same, as far as they can be had there. The same requests in
/// the same order get the same names.
class target_names {
public:
    /// `present` are all names in the folder that is carried, `reserved` those that nothing may get.
    target_names(fork_form form, std::set<wide_string> const & present, std::set<wide_string> const & reserved);

    /// Whether a name can be kept as it is, forks apart. Names that cannot are to be asked for behind those that can.
    static bool fits(wide_string const & leaf);

    /// A name for which, and for the forks that go with it, there is room.
    wide_string assign(wide_string const & leaf, bool resource, bool finder);

private:
    bool free(wide_string const & name, std::vector<wide_string> const & needed, bool kept) const;

    fork_form form_;
    std::set<wide_string> present_;
    std::set<wide_string> used_;
};
