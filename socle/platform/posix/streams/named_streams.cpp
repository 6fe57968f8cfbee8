#include "socle/platform/posix/streams/named_streams.h"

#include "socle/platform/errors.h"
#include "socle/platform/posix/files/copies.h"
#include "socle/platform/posix/host/descriptor.h"
#include "socle/platform/posix/host/error_codes.h"
#include "socle/platform/posix/host/extended_attributes.h"
#include "socle/platform/posix/host/host_calls.h"
#include "socle/platform/posix/streams/disk_streams.h"
#include "socle/platform/posix/streams/own_streams.h"
#include "socle/platform/posix/streams/stream_owners.h"

#include <cerrno>
#include <climits>
#include <new>
#include <string_view>

namespace platform::posix {

namespace {

/// Whether files at `volume` can have user attributes at all; `errno` says why not.
bool keeps_attributes(narrow_string const & volume) {
    narrow_string value;
    return get_attribute(volume, owner_attribute, true, value) || errno == ENODATA;
}

/// Removes what lies in an open folder, which it closes. Links are removed, not followed.
void remove_entries(descriptor_guard folder) {
    folder_guard const opened(host::fdopendir(folder.get()));
    if (!opened)
        return;
    folder.release();
    DIR * const entries = opened.get();
    while (dirent const * const entry = host::readdir(entries)) {
        std::string_view const name = entry->d_name;
        if (name == "." || name == ".." || host::unlinkat(dirfd(entries), entry->d_name, 0) == 0)
            continue;
        int const inner = host::openat(dirfd(entries), entry->d_name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (inner >= 0) {
            remove_entries(descriptor_guard(inner));
            host::unlinkat(dirfd(entries), entry->d_name, AT_REMOVEDIR);
        }
    }
}

} // namespace

uint32 make_named_streams(narrow_string const & folder, std::unique_ptr<named_streams> & streams) {
    char resolved[PATH_MAX];
    if (host::realpath(folder, resolved) == nullptr)
        return code_of(errno);
    narrow_string volume = resolved;
    if (disk_streams::found_at(volume)) {
        streams = std::make_unique<disk_streams>(volume);
        return 0;
    }
    if (!keeps_attributes(volume))
        return code_of(errno);
    volume = volume == "/" ? narrow_string() : volume;
    auto own = std::make_unique<own_streams>(volume);
    uint32 const code = settle_owners(volume, own->store());
    if (code == 0)
        streams = std::move(own);
    return code;
}

stream_removal::stream_removal(named_streams const & streams, narrow_string const & file)
    : belongings_(streams.belongings(file)) {
    if (!belongings_.empty())
        file_ = host::open(file, O_PATH | O_NOFOLLOW | O_CLOEXEC);
}

stream_removal::~stream_removal() {
    if (file_ >= 0)
        host::close(file_);
}

void stream_removal::name_removed() {
    struct stat status {};
    if (file_ < 0 || host::fstat(file_, &status) != 0 || (status.st_nlink > 0 && !S_ISDIR(status.st_mode)))
        return;
    int const folder = host::open(belongings_, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    try {
        if (folder >= 0) {
            remove_entries(descriptor_guard(folder));
            host::rmdir(belongings_);
        }
    } catch (std::bad_alloc const &) {
        // The file has gone; what stays of its streams belongs to nobody.
    }
}

uint32 copy_streams(named_streams const & from, narrow_string const & file, named_streams const & to,
                    narrow_string const & copy) {
    std::vector<wide_string> names;
    uint32 code = from.list(file, names);
    for (wide_string const & name : names) {
        narrow_string source;
        narrow_string target;
        code = code != 0 ? code : from.locate(file, name, false, source);
        code = code != 0 ? code : to.locate(copy, name, true, target);
        descriptor_guard const in(code != 0 ? descriptor_guard() : open_descriptor(source, O_RDONLY));
        descriptor_guard const out(in.get() < 0 ? descriptor_guard()
                                                : open_descriptor(target, O_WRONLY | O_CREAT | O_TRUNC));
        code = code != 0 ? code : out.get() < 0 ? code_of(errno) : copy_bytes(in.get(), out.get());
    }
    return code;
}

} // namespace platform::posix
