#pragma once

#include "host_folder.h"

#include <socle/basic/types.h>

#include <memory>
#include <set>

/// A folder that files are carried into: held, with the names that it had when it was entered. One that is not there,
/// as nothing is made in a dry run, has none.
class target_folder {
public:
    /// `typed` is what the user calls it.
    target_folder(std::optional<host::folder> held, narrow_string const & typed);

    std::optional<host::folder> const & held() const { return held_; }
    narrow_string const & typed() const { return typed_; }

    /// Whether anything had the name, exactly so spelled.
    bool listed(narrow_string const & name) const;
    /// What has the name now, in whatever spelling the host takes for the same.
    host::status look(narrow_string const & name) const;

    /// Whether anything listed may be a fork of what is beside it, by its name.
    bool lists_forks() const { return lists_forks_; }

    /// Notes that a file here stands for one of the source; false if it stands for another already.
    bool claim(host::status const & file);

    /// The library's path of a name in it, or of itself, which leads here whatever becomes of the folder's name. Only
    /// for one that is there.
    wide_string path(wide_string const & leaf) const;
    narrow_string typed(wide_string const & leaf) const;

private:
    std::optional<host::folder> held_;
    narrow_string typed_;
    std::vector<narrow_string> names_;
    bool lists_forks_ = false;
    wide_string path_;
    std::set<std::pair<uint64, uint64>> claimed_;
};

using target_pointer = std::shared_ptr<target_folder>;
