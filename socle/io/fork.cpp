#include "socle/io/fork.h"

#include "socle/io/file.h"
#include "socle/io/system_error.h"
#include "socle/io/system_path_internal.h"
#include "socle/platform/errors.h"
#include "socle/platform/files.h"

#include <algorithm>

namespace io {

namespace {

any::path beside(any::path path, char16_t const * suffix) {
    if (!path.empty())
        path.leaf() += suffix;
    return path;
}

} // namespace

fork::fork(io::file & file) : file_(file) {}
fork::fork(fork const &) = default;
fork::~fork() = default;

io::descriptor fork::_open(open_mode mode) {
    constexpr uint32 both = platform::GENERIC_READ | platform::GENERIC_WRITE;
    auto const opened = [this](uint32 access, uint32 sharing, uint32 disposition) {
        return io::descriptor(platform::CreateFileW(system_name(fork_name()), access, sharing, disposition, 0));
    };
    switch (mode) {
    case open_read:
        return opened(platform::GENERIC_READ, platform::FILE_SHARE_READ | platform::FILE_SHARE_WRITE,
                      platform::OPEN_EXISTING);
    case open_read_write: return opened(both, platform::FILE_SHARE_READ, platform::OPEN_EXISTING);
    case create_new: return opened(both, platform::FILE_SHARE_READ, platform::CREATE_NEW);
    case create_always: return opened(both, platform::FILE_SHARE_READ, platform::CREATE_ALWAYS);
    }
    raise("unknown fork open mode");
    return {};
}

void fork::raise(char const * message) const { raise_system_error(fork_name(), message, "io::fork"); }

void fork::open() {
    descriptor_ = _open(open_read);
    if (!descriptor_.valid())
        raise("cannot open");
}

void fork::open_rw() {
    descriptor_ = _open(open_read_write);
    if (!descriptor_.valid())
        raise("cannot open_rw");
}

bool fork::create(bool overwrite) {
    open_mode const mode = overwrite ? create_always : create_new;
    descriptor_ = _open(mode);
    if (descriptor_.valid())
        return false;
    any::path const saved = file_.path();
    bool const changed = file_.normalize();
    if (changed && exists())
        file_.make_unique(999);
    // Never over what another file has under that name.
    descriptor_ = _open(changed ? create_new : mode);
    if (!descriptor_.valid()) {
        file_.path() = saved;
        raise("cannot create");
    }
    return changed;
}

void fork::open_stdin() { open_standard(platform::STD_INPUT_HANDLE, "cannot open stdin"); }
void fork::open_stdout() { open_standard(platform::STD_OUTPUT_HANDLE, "cannot open stdout"); }
void fork::open_stderr() { open_standard(platform::STD_ERROR_HANDLE, "cannot open stderr"); }

void fork::open_standard(uint32 which, char const * message) {
    descriptor_ = platform::GetStdHandle(which);
    if (!descriptor_.valid())
        raise(message);
}

void fork::close(bool report) {
    if (!descriptor_.valid())
        return;
    bool const closed = platform::CloseHandle(descriptor_);
    descriptor_.reset();
    if (!closed && report)
        raise("cannot close");
}

bool fork::console() { return platform::GetFileType(descriptor_) == platform::FILE_TYPE_CHAR; }

uint32 fork::read(char * buffer, uint32 count) {
    uint32 done = 0;
    if (count > 0 && !platform::ReadFile(descriptor_, buffer, count, done))
        raise("cannot read from");
    return done;
}

void fork::write(char const * data, uint32 count) {
    uint32 done = 0;
    if (count > 0 && !platform::WriteFile(descriptor_, data, count, done))
        raise("cannot write to");
}

uint64 fork::size() {
    uint64 result = 0;
    if (descriptor_.valid()) {
        if (!platform::GetFileSize(descriptor_, result))
            raise("cannot determine the size of");
        return result;
    }
    system_kind const kind(fork_name());
    if (!kind.exists() || kind.device())
        return 0;
    try {
        open();
        result = size();
    } catch (...) {
        result = 0;
    }
    close(false);
    return result;
}

uint64 fork::tell() {
    uint64 position = all_ones;
    if (descriptor_.valid() && !platform::SetFilePointer(descriptor_, 0, platform::FILE_CURRENT, position))
        raise("cannot get position of");
    return position;
}

bool fork::seek(uint64 position) {
    if (!descriptor_.valid())
        return false;
    uint64 reached = 0;
    if (!platform::SetFilePointer(descriptor_, static_cast<int64>(position), platform::FILE_BEGIN, reached))
        raise("cannot set the position of");
    return true;
}

void fork::resize(uint64 size) {
    if (!descriptor_.valid())
        return;
    uint64 const position = tell();
    seek(size);
    bool const resized = platform::SetEndOfFile(descriptor_);
    uint32 const code = platform::GetLastError();
    seek(std::min(size, position));
    if (!resized) {
        platform::SetLastError(code);
        raise("cannot resize");
    }
}

void fork::flush(bool report) {
    if (descriptor_.valid() && !platform::FlushFileBuffers(descriptor_) && report)
        raise("cannot flush");
}

void fork::unlink(bool report) {
    if (descriptor_.valid())
        close(false);
    if (!platform::DeleteFileW(system_name(fork_name())) && report)
        raise("cannot delete");
}

bool fork::exists() { return item(fork_name()).exists(); }

data_fork::data_fork(io::file & file) : fork(file) {}
data_fork::data_fork(data_fork const &) = default;
data_fork::~data_fork() = default;
any::path data_fork::fork_name() const { return file().path(); }

rsrc_fork::rsrc_fork(io::file & file) : fork(file) {}
rsrc_fork::rsrc_fork(rsrc_fork const &) = default;
rsrc_fork::~rsrc_fork() = default;
any::path rsrc_fork::fork_name() const { return beside(file().path(), u".rsrc"); }

info_fork::info_fork(io::file & file) : fork(file) {}
info_fork::info_fork(info_fork const &) = default;
info_fork::~info_fork() = default;
any::path info_fork::fork_name() const { return beside(file().path(), u".info"); }

} // namespace io
