#include "socle/platform/posix/files/held_folder.h"

#include "socle/platform/host_names.h"
#include "socle/platform/posix/files/operations.h"
#include "socle/platform/posix/host/folder_reader.h"

namespace platform::posix {

namespace {

/// The kind of an entry, looked at only where the listing does not tell it.
uint32 entry_kind(int folder, dirent64 const & entry) {
    host::at const at(folder, entry.d_name);
    struct stat status {};
    auto mode = static_cast<mode_t>(DTTOIF(entry.d_type));
    if (entry.d_type == DT_UNKNOWN && host::lstat(at, &status) == 0)
        mode = status.st_mode;
    if (!S_ISLNK(mode))
        return kind_of(mode);
    return FILE_ATTRIBUTE_REPARSE_POINT | (host::stat(at, &status) == 0 ? kind_of(status.st_mode) : 0);
}

} // namespace

system_code listed_folder::open(std::u16string_view path, bool follow_link) {
    host_text text;
    if (system_code const code = to_host_text(path, text))
        return code;
    if (text.has_stream)
        return ERROR_DIRECTORY;
    // It need not be told from the folder above.
    file_ = open_descriptor(text.on->at(text.path()), O_RDONLY | O_DIRECTORY | (follow_link ? 0 : O_NOFOLLOW));
    if (file_.get() < 0) {
        // What is missing in front of the search's last name is a path.
        host_error const error = host_error::last();
        return error == ENOENT ? ERROR_PATH_NOT_FOUND : error == ENOTDIR ? ERROR_DIRECTORY : code_of(error);
    }
    on_ = text.on->shared_from_this();
    if (system_code const code = any_attached() ? find_volume() : system_code())
        return code;
    if (on_.get() == text.on || text.on->top.get() < 0)
        return {};
    return text.on->check_place(); // it was left by a link, or as its folder has been moved
}

system_code listed_folder::open(listed_folder const & above, narrow_string const & name) {
    file_ = open_descriptor({above.descriptor(), name.c_str()}, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
    if (file_.get() < 0)
        return errno == ENOTDIR ? ERROR_DIRECTORY : last_code();
    on_ = above.on_;
    return above.crosses_ ? find_volume() : system_code();
}

host_error listed_folder::find_path(narrow_string & path) const {
    host_error const error = path_of(file_.get(), path);
    if (path == "/")
        path.clear();
    return error;
}

system_code listed_folder::find_volume() {
    narrow_string path;
    host_error const error = find_path(path);
    if (error == ENAMETOOLONG) {
        // So far down that the host has no path for it: on the volume of the folder above, as far as can be told.
        crosses_ = true;
        return {};
    }
    if (error)
        return code_of(error);
    on_ = volume_at(path).shared_from_this();
    at_top_ = path == on_->folder;
    crosses_ = any_below(path);
    return on_->hides_path(path) ? ERROR_ACCESS_DENIED : system_code();
}

system_code listed_folder::entry(std::u16string_view name, resolved_path & at) const {
    if (file_.get() < 0)
        return ERROR_PATH_NOT_FOUND;
    std::size_t const colon = name.find(u':');
    std::u16string_view const leaf = name.substr(0, colon);
    if (leaf.empty() || leaf == u"." || leaf == u".." || !to_host_name(leaf, at.name))
        return ERROR_INVALID_NAME;
    if (on_->hides(at.name, at_top_))
        return ERROR_ACCESS_DENIED;
    at.on = on_.get();
    at.folder = file_.get();
    at.safe = is_safe_name(leaf);
    if (crosses_) {
        narrow_string path;
        host_error const error = find_path(path);
        if (!error)
            at.on = &volume_at(path.append("/").append(at.name));
        else if (error != ENAMETOOLONG)
            return code_of(error);
    }
    return colon == std::u16string_view::npos ? system_code() : to_stream(name.substr(colon + 1), at);
}

system_code listed_folder::list(found const & entry) {
    if (file_.get() < 0)
        return ERROR_PATH_NOT_FOUND;
    if (listed_ && host::lseek(file_.get(), 0, SEEK_SET) != 0)
        return last_code();
    listed_ = true;
    folder_reader entries(file_.get());
    while (dirent64 const * const read = entries.next())
        if (!on_->hides(read->d_name, at_top_))
            entry(read->d_name, entry_kind(file_.get(), *read));
    return code_of(entries.error());
}

} // namespace platform::posix
