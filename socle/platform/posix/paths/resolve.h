#pragma once

#include "socle/platform/path_text.h"
#include "socle/platform/posix/host/descriptor.h"
#include "socle/platform/posix/paths/volumes.h"

#include <memory>
#include <string_view>

/// From the library's paths to what the host calls take.
namespace platform::posix {

/// What a path is resolved from: the folder that it is in, or the file itself.
struct found_folder {
    narrow_string spelled; // as the path has it
    descriptor_guard file; // none if the process had none left
    narrow_string real;    // free of links; "" for the host's root
};

/// Opens a folder of a volume and asks it where it lies: it may be on another than the text tells, if there are links
/// in it. ENOENT as well where the volume's own folder has been moved or removed.
host_error find_folder(volume const & on, narrow_string const & folder, std::shared_ptr<found_folder const> & found);

/// A name in an open folder, and the volume that it is on. Without attached volumes nothing is opened: it is the whole
/// path, absolute, and each call resolves it.
struct resolved_path {
    volume const * on = nullptr;
    std::shared_ptr<found_folder const> found;
    int folder = AT_FDCWD; // the open folder; somebody else's if none was found
    /// Without a separator at its end, but "/" for the host's root.
    narrow_string name;
    /// The path, absolute and free of links but for the last name; empty while nothing is attached.
    narrow_string real;
    /// The name of a named stream, with `name` empty and `folder` the file itself, if that is there; only on a volume
    /// that has streams.
    wide_string stream;
    /// Whether the path ended in a separator, so that it can only be a folder, or a link to one.
    bool is_folder = false;
    /// Whether the name may be created: false for what the native volumes refuse.
    bool safe = true;

    host::at at() const { return at(name); }
    /// Another name in this folder, as `beside` makes it.
    host::at at(narrow_string const & other) const { return {folder, other.c_str()}; }
    narrow_string beside(std::string_view leaf) const { return name.substr(0, name.rfind('/') + 1).append(leaf); }
};

/// The path as text: the host's folder, "" for its root, and a name in it, which is empty for a volume's own folder.
struct host_text {
    volume const * on = nullptr;
    narrow_string folder;
    narrow_string leaf;
    bool is_folder = false; // see resolved_path
    bool has_stream = false;
    wide_string stream;
    bool safe = true;

    narrow_string path() const {
        narrow_string whole = folder;
        if (!leaf.empty())
            whole.append("/").append(leaf);
        return whole;
    }
};

system_code to_host_text(path_text const & path, host_text & text);
system_code to_host_text(std::u16string_view path, host_text & text);

/// Whether the native volumes let a file have this name.
bool is_safe_name(std::u16string_view name);

/// The start of relative paths: adds the names of the working directory.
bool host_working_directory(path_text & text);

system_code resolve(std::u16string_view path, resolved_path & resolved);

/// Leads on from a file to its named stream of this name and type.
system_code to_stream(std::u16string_view stream, resolved_path & resolved);

/// The code of a call on `at` that failed with `error`: a missing parent is told from a missing leaf.
system_code code_at(resolved_path const & at, host_error error);
inline system_code last_code_at(resolved_path const & at) { return code_at(at, host_error::last()); }
inline system_code last_code_at_if(bool failed, resolved_path const & at) {
    return code_at(at, host_error::last_if(failed));
}

} // namespace platform::posix
