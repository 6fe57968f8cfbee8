#include "socle/platform/posix/streams/own_streams.h"

#include "socle/platform/errors.h"
#include "socle/platform/posix/host/descriptor.h"
#include "socle/platform/posix/host/error_codes.h"
#include "socle/platform/posix/host/host_calls.h"
#include "socle/platform/posix/streams/stream_owners.h"
#include "socle/platform/stream_names.h"

#include <algorithm>
#include <cerrno>
#include <string_view>

namespace platform::posix {

namespace {

/// Makes the folders between `folder` and the last component of `path`.
int make_folders(narrow_string const & path, std::size_t folder) {
    for (std::size_t at = path.find('/', folder + 1); at != narrow_string::npos; at = path.find('/', at + 1))
        if (host::mkdir(path.substr(0, at), S_IRWXU | S_IRWXG | S_IRWXO) != 0 && errno != EEXIST)
            return errno;
    return 0;
}

/// Adds the names of the streams in `folder`; `begun` is the part of their stored names that the folder stands for.
int list_folder(narrow_string const & folder, narrow_string const & begun, std::vector<wide_string> & names) {
    folder_guard const entries(host::opendir(folder));
    if (!entries)
        return errno == ENOENT ? 0 : errno;
    int error = 0;
    errno = 0;
    while (dirent const * const entry = host::readdir(entries.get())) {
        std::string_view const name = entry->d_name;
        wide_string stream;
        if (name.ends_with('~')) {
            // No longer than the longest stored name, so that nothing put there by hand leads down without end.
            if (begun.size() < 5 * 255) {
                error = list_folder((folder + '/').append(name), begun + narrow_string(name.substr(0, name.size() - 1)),
                                    names);
            }
        } else if (stream_name_of(begun + narrow_string(name), stream)) {
            names.push_back(stream);
        }
        if (error != 0)
            break;
        errno = 0;
    }
    return error != 0 ? error : errno;
}

} // namespace

own_streams::own_streams(narrow_string const & volume) : store_(volume + "/.socle_streams") {}

uint32 own_streams::locate(narrow_string const & file, wide_string const & name, bool create,
                           narrow_string & host) const {
    narrow_string id;
    uint32 const code = create ? make_stream_owner(store_, file, id) : stream_owner(store_, file, true, id);
    if (code != 0 || id.empty())
        return code != 0 ? code : ERROR_FILE_NOT_FOUND;
    host = store_ + '/' + id + '/' + stored_stream_name(name);
    return create ? code_of(make_folders(host, store_.size() + 1 + id.size())) : 0;
}

uint32 own_streams::list(narrow_string const & file, std::vector<wide_string> & names) const {
    names.clear();
    narrow_string id;
    uint32 const code = stream_owner(store_, file, true, id);
    if (code != 0 || id.empty())
        return code;
    int const error = list_folder(store_ + '/' + id, {}, names);
    std::sort(names.begin(), names.end());
    return code_of(error);
}

bool own_streams::hidden(narrow_string const & host) const {
    return host.starts_with(store_) && (host.size() == store_.size() || host[store_.size()] == '/');
}

narrow_string own_streams::belongings(narrow_string const & file) const {
    narrow_string id;
    return stream_owner(store_, file, false, id) == 0 && !id.empty() ? store_ + '/' + id : narrow_string();
}

} // namespace platform::posix
