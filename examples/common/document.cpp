#include "document.h"

#include "host.h"

#include <socle/nio/exception.h>
#include <socle/nio/filesystem_exception.h>
#include <socle/platform/host.h>

#include <filesystem>

namespace {

constexpr std::size_t room = 65536;

} // namespace

document::document() { file_.open_stdout(); }

document::document(narrow_string const & path) {
    if (path == "-") {
        file_.open_stdout();
        return;
    }
    auto const there = host::kind_of(path);
    if (there != host::kind::nothing && there != host::kind::file)
        throw nio::exception("cannot write the output: something other than a file is there");
    path_ = path;
    auto const full = host::text_of(std::filesystem::absolute(host::path_of(path)));
    file_.path() = nio::make_unique(platform::from_host(full + ".part"), 999);
    file_.create(false);
    if (!file_.is_open())
        throw nio::filesystem_exception("cannot create the output", file_.path());
    part_ = platform::to_host(file_.path());
}

document::~document() {
    if (part_.empty())
        return;
    file_.close();
    file_.unlink(false);
}

void document::write(char byte) { write(&byte, 1); }

void document::write(char const * data, uint32 count) {
    if (held_.size() + count > room)
        flush();
    held_.append(data, count);
}

void document::flush() {
    passed_ += held_.size();
    narrow_string const block = std::move(held_);
    held_.clear();
    file_.write(block.data(), static_cast<uint32>(block.size()));
}

void document::finish() {
    flush();
    if (part_.empty())
        return;
    file_.close();
    std::filesystem::rename(host::path_of(part_), host::path_of(path_));
    part_.clear();
}
