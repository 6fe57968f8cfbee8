#include "socle/io/attributes.h"

#include "socle/io/exception.h"
#include "socle/io/file.h"
#include "socle/io/fork_input.h"
#include "socle/io/fork_output.h"
#include "socle/io/info_header_internal.h"
#include "socle/io/system_error.h"
#include "socle/io/system_path_internal.h"
#include "socle/platform/errors.h"
#include "socle/platform/file_times.h"
#include "socle/platform/folders.h"
#include "socle/platform/paths.h"

namespace io {

namespace {

constexpr char const * origin = "io::attributes";

constexpr uint32 loaded_bits = platform::FILE_ATTRIBUTE_READONLY | platform::FILE_ATTRIBUTE_HIDDEN
                               | platform::FILE_ATTRIBUTE_SYSTEM | platform::FILE_ATTRIBUTE_DIRECTORY
                               | platform::FILE_ATTRIBUTE_ARCHIVE | platform::FILE_ATTRIBUTE_NORMAL
                               | platform::FILE_ATTRIBUTE_TEMPORARY;

int open_times(any::path const & path) {
    return platform::CreateFileW(system_name(path), platform::GENERIC_WRITE,
                                 platform::FILE_SHARE_READ | platform::FILE_SHARE_WRITE, platform::OPEN_EXISTING,
                                 platform::FILE_FLAG_BACKUP_SEMANTICS);
}

uint64 const * file_time(any::time const * time, uint64 & value) {
    if (time == nullptr)
        return nullptr;
    value = time->file_time();
    return &value;
}

file sidecar_of(any::path const & path) {
    file owner(path);
    return file(owner.info_fork().fork_name());
}

/// Closes a fork at the end of a block, however that is left.
struct closing {
    io::fork & fork;
    explicit closing(io::fork & open) : fork(open) {}
    closing(closing const &) = delete;
    closing & operator=(closing const &) = delete;
    ~closing() { fork.close(false); }
};

/// Seconds since 1904; 0 for a time before that, which the format has no number for.
uint32 mac_seconds(any::time const & time) {
    uint64 const first = any::time(0, any::time::format_mac_seconds).file_time();
    bool const early = time.mac_time() == 0 && time.file_time() < first;
    return early ? 0 : static_cast<uint32>(time.get(any::time::format_mac_seconds));
}

void refuse(any::path const & path, bool is_there) {
    raise_system_error(path, is_there ? "cannot access timestamp(s) of" : "what is this", origin);
}

[[noreturn]] void refuse_type() { throw exception("unknown attributes type", origin, 0); }

bool reads_sidecar(int type) {
    if (type < attributes::no_sidecar || type > attributes::read_sidecar)
        refuse_type();
    return type == attributes::with_sidecar || type == attributes::read_sidecar;
}

} // namespace

attributes::attributes() = default;
attributes::attributes(attributes const &) = default;
attributes & attributes::operator=(attributes const &) = default;
attributes::~attributes() = default;

void attributes::load(any::path const & path, int type) {
    platform::held_paths const hold;
    clear();
    platform::WIN32_FILE_ATTRIBUTE_DATA data{};
    if (!platform::GetFileAttributesExW(system_name(path), data))
        refuse(path, system_kind(path).exists());
    take(data);
    if (reads_sidecar(type))
        load_bin(path);
}

/// The same for an entry of an open folder.
void attributes::load_entry(platform::open_folder const & folder, any::path const & path, int type) {
    wide_string const name = system_name(path.leaf());
    auto const is_there = [&](char16_t const * suffix) {
        return platform::GetFileKindW(folder, name + suffix) != platform::INVALID_FILE_ATTRIBUTES
               || !platform::nothing_is_there();
    };
    clear();
    platform::WIN32_FILE_ATTRIBUTE_DATA data{};
    if (!platform::GetFileAttributesExW(folder, name, data))
        refuse(path, is_there(u""));
    take(data);
    if (reads_sidecar(type) && (is_there(u".info") || is_there(u".info.info") || is_there(u".info.rsrc")))
        load_bin(path);
}

/// Makes absent what is read; the times are present from here on, also if a call fails.
void attributes::clear() {
    win32.clear();
    mac_file.clear();
    mac_folder.clear();
    unix.clear();
    extra_path.clear();
    read_only = false;
    created = created.value();
    modified = modified.value();
}

void attributes::take(platform::WIN32_FILE_ATTRIBUTE_DATA const & data) {
    auto const set = [](optional<any::time> & time, uint64 units) {
        any::time changed = time.value();
        changed.set(units, any::time::format_file_time);
        time = changed;
    };
    set(created, data.ftCreationTime);
    set(modified, data.ftLastWriteTime);
    io::win32::attributes found;
    found.flags = data.dwFileAttributes & loaded_bits;
    win32 = found;
    read_only = (data.dwFileAttributes & platform::FILE_ATTRIBUTE_READONLY) != 0;
    io::unix::attributes derived;
    derived.mode = read_only.value() ? 0400 : 0640;
    if ((data.dwFileAttributes & platform::FILE_ATTRIBUTE_DIRECTORY) != 0)
        derived.mode.value += 0110;
    unix = derived;
}

void attributes::apply(any::path const & path, int type) const {
    platform::held_paths const hold;
    set_time(path, created.present() ? &created.value() : nullptr, modified.present() ? &modified.value() : nullptr);
    uint32 bits = platform::FILE_ATTRIBUTE_ARCHIVE;
    if (win32.present())
        bits = win32.value().flags;
    else if (read_only.present() && read_only.value())
        bits |= platform::FILE_ATTRIBUTE_READONLY;
    platform::SetFileAttributesW(system_name(path), bits);

    switch (type) {
    case 0:
    case 2:
    case 3: break;
    case 1: apply_bin(path); break;
    default: refuse_type();
    }
}

void attributes::load_bin(any::path const & path) {
    file sidecar = sidecar_of(path);
    system_kind const kind(sidecar.path());
    if (!kind.exists() && !platform::nothing_is_there())
        raise_system_error(sidecar.path(), "cannot open", "io::fork");
    // A side fork of the sidecar itself makes it a file that cannot be opened.
    bool const nothing = !kind.exists() && !sidecar.info_fork().exists() && !sidecar.rsrc_fork().exists();
    if (nothing || kind.device())
        return;
    std::array<char, info_header::size> bytes;
    fork & stored = sidecar.data_fork();
    stored.open();
    closing const at_end(stored);
    uint32 const count = fork_input(stored).read(bytes.data(), info_header::size);
    if (count < info_header::least_size)
        return;
    info_header header;
    header.read(bytes.data(), count);
    auto finder = mac_file.value();
    finder.info = header.finder;
    mac_file = finder;
    created = any::time(header.created, any::time::format_mac_seconds);
    modified = any::time(header.modified, any::time::format_mac_seconds);
}

void attributes::apply_bin(any::path const & path) const {
    file sidecar = sidecar_of(path);
    // Before the old sidecar goes.
    auto const bytes =
        info_header{mac_file.value().info, mac_seconds(created.value()), mac_seconds(modified.value())}.write();
    if (system_kind(sidecar.path()).device()) {
        platform::SetLastError(platform::ERROR_ACCESS_DENIED);
        raise_system_error(sidecar.path(), "cannot create", "io::fork");
    }
    fork & stored = sidecar.data_fork();
    stored.create(true);
    closing const at_end(stored);
    fork_output(stored).write(bytes.data(), info_header::size);
}

bool attributes::set_time(any::path const & path, any::time const * created, any::time const * modified) {
    int const handle = open_times(path);
    platform::handle_guard const at_end(handle);
    if (handle == platform::INVALID_HANDLE_VALUE)
        return false;
    uint64 first = 0;
    uint64 last = 0;
    return platform::SetFileTime(handle, file_time(created, first), file_time(modified, last));
}

} // namespace io
