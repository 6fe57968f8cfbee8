#pragma once

#include "socle/platform/posix/streams/stream_claims.h"
#include "socle/platform/posix/streams/stream_store.h"

/// The folders in the store, one for the streams of a file. Its streams, and the folders that it may have for long
/// names, belong to its own owner. These throw `host_error`: EUCLEAN where a file says that it has streams that are
/// nowhere, EACCES for what is there, but not the file's.
namespace platform::posix {

/// An open folder of streams; none if it is not open.
struct streams_folder {
    descriptor_guard above; // the folder of the store, if that is not the volume's
    stream_store store;
    descriptor_guard folder;
    struct stat status {};
    stream_claim claim;
    /// Whether it is that of another file, which has gone, and of which this one is a copy.
    bool borrowed = false;
    /// What the file claims as a copy, and need not any more when it has its own.
    std::vector<stream_claim> useless;
    /// Whether it claims another one that is nowhere.
    bool lost = false;

    bool is_open() const { return folder.get() >= 0; }
    /// Whether the process may do all with it that its owner may.
    bool serves() const { return geteuid() == 0 || geteuid() == status.st_uid; }
};

/// The folder that a file claims; none if it claims none of its own. It is looked for at the top of `volume`, and from
/// the file upwards.
streams_folder find_streams(held_place const & volume, host::at const & file, claimant const & owner);

/// Makes a folder for the file's streams, with copies of those in `from`, if that is open, and lets the file claim it.
/// EWOULDBLOCK while somebody writes there. False if another process was faster.
bool make_streams(held_place const & volume, host::at const & file, claimant const & owner,
                  streams_folder const & from);

/// Locks a folder of streams, or one of them: EWOULDBLOCK where somebody else's lock refuses one of this `kind`.
void lock(int file, int kind);

/// Lets all in the folder follow the file, see `let_follow`.
void let_all_follow(streams_folder & streams, file_rights const & rights);

/// Notes where the file lies now.
void note_place(streams_folder const & streams, host::at const & file);

/// Opens a folder for long names in `folder`. With `create`, makes it if it is missing.
descriptor_guard open_inner(int folder, char const * name, uid_t owner, file_rights const & rights, bool create);

/// Whether what is open, or was found, can be a stream of a file with these rights, in a folder of `owner`; for one
/// that is `borrowed`, whether its original has left it to be read as well.
bool is_stream(struct stat const & status, uid_t owner, file_rights const & rights, bool borrowed);

/// Removes the folder of an id, which is open, with all in it. Links are removed, not followed.
host_error remove_streams(int store, narrow_string const & id, int folder);

} // namespace platform::posix
