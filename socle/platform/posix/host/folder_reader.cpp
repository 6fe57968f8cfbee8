#include "socle/platform/posix/host/folder_reader.h"

#include <string_view>

namespace platform::posix {

dirent64 const * folder_reader::next() {
    for (;;) {
        if (at_ == end_) {
            ssize_t const size = host::getdents(folder_, block_.data(), block_.size());
            error_ = host_error::last_if(size < 0);
            if (size <= 0)
                return nullptr;
            at_ = 0;
            end_ = static_cast<std::size_t>(size);
        }
        auto const * const entry = reinterpret_cast<dirent64 const *>(block_.data() + at_);
        at_ += entry->d_reclen;
        std::string_view const name = entry->d_name;
        if (name != "." && name != "..")
            return entry;
    }
}

} // namespace platform::posix
