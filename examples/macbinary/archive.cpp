#include "archive.h"

#include "common/host.h"

#include <socle/io/exception.h>
#include <socle/nio/filesystem_exception.h>
#include <socle/platform/host.h>

archive::archive(narrow_string const & path) : path_(path) {
    if (path == "-") {
        file_.open_stdin();
    } else {
        auto const kind = host::kind_behind(path);
        if (kind != host::kind::file && kind != host::kind::nothing)
            throw io::exception("is no file", path, 0);
        file_.path() = platform::from_host(path);
        file_.open();
        size_ = file_.size();
    }
    head_ = header_of(*this, path);
}

void archive::check_length() {
    if (size_ < head_.end())
        fail_short(size_);
}

void archive::read_to_the_end() {
    check_length();
    skip(head_.end() - std::min(tell(), head_.end()));
    if (tell() < head_.end())
        fail_short(tell());
}

int archive::_read() {
    unsigned char byte;
    return _read(reinterpret_cast<char *>(&byte), 1) == 1 ? byte : -1;
}

/// A pipe gives what it has, and fails at its end.
uint32 archive::_read(char * buffer, uint32 count) {
    constexpr uint32 end_of_pipe = 109;
    uint32 done = 0;
    try {
        for (uint32 got = 1; done < count && got > 0; done += got)
            got = file_.read(buffer + done, count - done);
    } catch (nio::filesystem_exception const & e) {
        if (e.error() != end_of_pipe)
            throw;
    }
    passed_ += done;
    return done;
}

void archive::fail_short(uint64 size) const {
    throw io::exception(
        "is cut short: it has " + std::to_string(size) + " of " + std::to_string(head_.end()) + " bytes", path_, 0);
}
