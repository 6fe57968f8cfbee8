#pragma once

#include "host_folder.h"

/// What a file or folder of the host has beside its bytes, its dates and its forks.
namespace host {

/// What there is of that, or what is to be kept of it.
struct belongings {
    bool owner = false;
    bool acls = false;
    bool attributes = false;
};

/// Whether it has more than its status tells: extended attributes of any kind, the library's too.
bool has_more(narrow_string const & path);
/// The same for names in a folder, which may be the working directory of the program for as long as this lives.
class listed_names {
public:
    explicit listed_names(host::folder const & folder);
    listed_names(listed_names const &) = delete;
    listed_names & operator=(listed_names const &) = delete;
    ~listed_names();

    bool has_more(narrow_string const & name) const;

private:
    narrow_string folder_;
    std::intptr_t before_ = -1; // the working directory that is to be again; -1 if it stays
};
/// Whether what is in the folder may have more that is not even listed: a driver that has the attributes and streams of
/// the disk itself does not.
bool has_unlisted(host::folder const & folder);

/// ACLs, and extended attributes that are not the library's own.
belongings belongings_of(narrow_string const & path);

/// Gives `to` those of `from` that are asked for, and the permissions in `known`. The result tells what could not be
/// given.
struct refusals {
    bool mode = false, owner = false, acls = false, attributes = false;
};
refusals give_belongings(narrow_string const & from, status const & known, narrow_string const & to,
                         belongings const & wanted);

/// Whether the user may make a file another's.
bool may_give_owners();

/// Permissions alone; false if the host refuses.
bool give_mode(narrow_string const & path, uint32 mode);

} // namespace host
