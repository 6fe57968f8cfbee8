#include "socle/platform/folders.h"

#include "socle/platform/posix/files/held_folder.h"
#include "socle/platform/posix/files/operations.h"
#include "socle/platform/posix/host/report.h"

namespace platform {

namespace {

/// So many folders above one that is open stay open themselves.
constexpr int kept_open = 8;

/// Does `step` with an entry of a folder.
template <typename Step>
system_code with_entry(open_folder const & folder, std::u16string_view name, Step step) {
    if (!folder.is_open())
        return ERROR_INVALID_HANDLE;
    posix::resolved_path at;
    system_code const code = folder.get()->folder.entry(name, at);
    return code ? code : step(at);
}

} // namespace

void open_folder::held::put_down() {
    struct stat status {};
    if (folder.descriptor() < 0 || posix::host::fstat(folder.descriptor(), &status) != 0)
        return;
    device = status.st_dev;
    inode = status.st_ino;
    folder.replace(posix::descriptor_guard());
}

void open_folder::held::take_up_above() const {
    if (above == nullptr || above->folder.descriptor() >= 0 || folder.descriptor() < 0)
        return;
    struct stat status {};
    posix::descriptor_guard file = posix::open_descriptor({folder.descriptor(), ".."}, O_RDONLY | O_DIRECTORY);
    bool const same = file.get() >= 0 && posix::host::fstat(file.get(), &status) == 0 && status.st_dev == above->device
                      && status.st_ino == above->inode;
    if (same)
        above->folder.replace(std::move(file));
}

open_folder::open_folder() = default;
open_folder::open_folder(open_folder &&) noexcept = default;

open_folder & open_folder::operator=(open_folder && other) noexcept {
    close();
    held_ = std::move(other.held_);
    return *this;
}

open_folder::~open_folder() { close(); }

bool open_folder::open(wide_string const & path) { return open(path, false); }

bool open_folder::open_target(wide_string const & path) { return open(path, true); }

bool open_folder::open(wide_string const & path, bool follow_link) {
    close();
    auto opened = std::make_unique<held>();
    if (!posix::report(opened->folder.open(path, follow_link)))
        return false;
    held_ = std::move(opened);
    return true;
}

bool open_folder::open(open_folder & above, wide_string const & name) {
    close();
    auto opened = std::make_unique<held>();
    held * far = above.get();
    auto const open = [&](posix::resolved_path const & at) {
        return at.stream.empty() ? opened->folder.open(above.get()->folder, at.name) : system_code(ERROR_INVALID_NAME);
    };
    system_code code = with_entry(above, name, open);
    if (code == ERROR_TOO_MANY_OPEN_FILES) {
        for (held * each = far->above; each != nullptr; each = each->above)
            each->put_down();
        code = with_entry(above, name, open);
    }
    if (!posix::report(code))
        return false;
    for (int i = 0; i < kept_open && far != nullptr; ++i)
        far = far->above;
    if (far != nullptr)
        far->put_down();
    opened->above = above.get();
    held_ = std::move(opened);
    return true;
}

void open_folder::close() {
    if (held_)
        held_->take_up_above();
    held_.reset();
}

uint32 GetFileKindW(open_folder const & folder, wide_string const & name) {
    uint32 kind = 0;
    auto const ask = [&](posix::resolved_path const & at) { return posix::kind_at(at, kind); };
    return posix::report(with_entry(folder, name, ask)) ? kind : INVALID_FILE_ATTRIBUTES;
}

uint32 GetFileAttributesW(open_folder const & folder, wide_string const & name) {
    uint32 bits = 0;
    auto const ask = [&](posix::resolved_path const & at) { return posix::attributes_at(at, bits, nullptr); };
    return posix::report(with_entry(folder, name, ask)) ? bits : INVALID_FILE_ATTRIBUTES;
}

bool GetFileAttributesExW(open_folder const & folder, wide_string const & name, WIN32_FILE_ATTRIBUTE_DATA & data) {
    auto const ask = [&](posix::resolved_path const & at) { return posix::attributes_at(at, data); };
    return posix::report(with_entry(folder, name, ask));
}

bool SetFileAttributesW(open_folder const & folder, wide_string const & name, uint32 attributes) {
    auto const set = [&](posix::resolved_path const & at) { return posix::set_attributes_at(at, attributes); };
    return posix::report(with_entry(folder, name, set));
}

int CreateFileW(open_folder const & folder, wide_string const & name, uint32 access, uint32 sharing, uint32 disposition,
                uint32 flags) {
    posix::descriptor_guard file;
    auto const open = [&](posix::resolved_path const & at) {
        return posix::open_at(at, {access, sharing, disposition, flags}, file);
    };
    return posix::report(with_entry(folder, name, open)) ? file.release() : INVALID_HANDLE_VALUE;
}

bool DeleteFileW(open_folder const & folder, wide_string const & name) {
    return posix::report(with_entry(folder, name, posix::delete_at));
}

bool CreateDirectoryW(open_folder const & folder, wide_string const & name) {
    return posix::report(with_entry(folder, name, posix::make_folder_at));
}

bool RemoveDirectoryW(open_folder const & folder, wide_string const & name) {
    return posix::report(with_entry(folder, name, posix::remove_folder_at));
}

bool GetVolumeInformationW(open_folder const & folder, wide_string const & name, wide_string & file_system) {
    return posix::report(with_entry(folder, name, [&](posix::resolved_path const & at) {
        file_system = posix::file_system_of(*at.on);
        return system_code();
    }));
}

bool MoveFileW(open_folder const & from, wide_string const & name, open_folder const & to,
               wide_string const & new_name) {
    return posix::report(with_entry(from, name, [&](posix::resolved_path const & source) {
        return with_entry(to, new_name,
                          [&](posix::resolved_path const & target) { return posix::move_at(source, target); });
    }));
}

} // namespace platform
