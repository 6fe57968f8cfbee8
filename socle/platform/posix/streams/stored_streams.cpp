#include "socle/platform/posix/streams/stored_streams.h"

#include "socle/platform/posix/host/descriptor.h"
#include "socle/platform/posix/host/folder_reader.h"
#include "socle/platform/posix/streams/stream_owners.h"
#include "socle/platform/stream_names.h"

#include <algorithm>

namespace platform::posix {

namespace {

constexpr std::string_view store_name = ".socle_streams";

/// Makes the folders between `folder` and the last component of `path`.
host_error make_folders(narrow_string const & path, std::size_t folder) {
    for (std::size_t at = path.find('/', folder + 1); at != narrow_string::npos; at = path.find('/', at + 1))
        if (host::mkdir(path.substr(0, at), new_folder_mode) != 0 && errno != EEXIST)
            return host_error::last();
    return {};
}

/// Adds the names of the streams in a folder; `begun` is the part of their stored names that the folder stands for.
host_error list_folder(host::at const & path, narrow_string const & begun, std::vector<wide_string> & names) {
    descriptor_guard const folder = open_descriptor(path, O_RDONLY | O_DIRECTORY);
    if (folder.get() < 0)
        return host_error::last_if(errno != ENOENT);
    folder_reader entries(folder.get());
    while (dirent64 const * const entry = entries.next()) {
        std::string_view const name = entry->d_name;
        wide_string stream;
        if (!name.ends_with('~')) {
            if (stream_name_of(begun + narrow_string(name), stream))
                names.push_back(stream);
            continue;
        }
        // No longer than the longest stored name, so that nothing put there by hand leads down without end.
        if (begun.size() >= 5 * 255)
            continue;
        narrow_string const longer = begun + narrow_string(name.substr(0, name.size() - 1));
        if (host_error const error = list_folder({folder.get(), entry->d_name}, longer, names))
            return error;
    }
    return entries.error();
}

} // namespace

stored_streams::stored_streams(narrow_string const & volume) : store_((volume + '/').append(store_name)) {}

system_code stored_streams::locate(host::at const & file, wide_string const & name, bool create,
                                   narrow_string & host) const {
    narrow_string id;
    if (system_code const code = create ? make_stream_owner(store_, file, id) : stream_owner(store_, file, true, id))
        return code;
    if (id.empty())
        return ERROR_FILE_NOT_FOUND;
    host = store_ + '/' + id + '/' + stored_stream_name(name);
    return create ? code_of(make_folders(host, store_.size() + 1 + id.size())) : system_code();
}

system_code stored_streams::list(host::at const & file, std::vector<wide_string> & names) const {
    names.clear();
    narrow_string id;
    system_code const code = stream_owner(store_, file, true, id);
    if (code || id.empty())
        return code;
    host_error const error = list_folder(store_ + '/' + id, {}, names);
    std::sort(names.begin(), names.end());
    return code_of(error);
}

bool stored_streams::hides(std::string_view name, bool at_top) const { return at_top && name == store_name; }

narrow_string stored_streams::belongings(host::at const & file) const {
    narrow_string id;
    return !stream_owner(store_, file, false, id) && !id.empty() ? store_ + '/' + id : narrow_string();
}

} // namespace platform::posix
