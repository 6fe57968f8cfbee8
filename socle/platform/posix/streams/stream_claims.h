#pragma once

#include "socle/platform/posix/host/descriptor.h"

/// What files and the folders of their streams say of each other, see stream_owners.h. These throw the `host_error`
/// with which the host fails: nobody must take a file that could not be looked at for one that owns nothing.
namespace platform::posix {

struct stream_claim {
    narrow_string id; // empty if the file claims none
    narrow_string identity;
};

stream_claim claim_of(host::at const & file, bool follow_link);
void set_claim(host::at const & file, narrow_string const & id);

/// What no other file of the host has had or will have, as far as it can tell.
narrow_string identity_of(host::at const & file, bool follow_link);

/// The attribute's text; false if there is none, or no such file where `must_exist` is false.
bool read_owner_attribute(host::at const & file, bool follow_link, bool must_exist, narrow_string & text);
void write_owner_attribute(host::at const & file, narrow_string const & text);

/// Where in the volume of `store` a file lies, links resolved.
narrow_string path_in_volume(narrow_string const & store, host::at const & file);

/// The folder of an id in the store, and whether its file was at `path` when that was last noted.
narrow_string streams_folder(narrow_string const & store, narrow_string const & id);
bool owner_was_at(narrow_string const & store, narrow_string const & id, narrow_string const & path);

/// Holds the store's folder locked against other processes; a file system without locks goes without.
class store_lock {
public:
    explicit store_lock(narrow_string const & store);

private:
    descriptor_guard folder_;
};

} // namespace platform::posix
