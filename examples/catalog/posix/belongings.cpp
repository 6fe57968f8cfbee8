#include "catalog/belongings.h"

#include <cerrno>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace host {

namespace {

/// The names of the extended attributes of a file, which are none if they cannot be had.
std::vector<narrow_string> names_of(narrow_string const & path) {
    auto const size = ::llistxattr(path.c_str(), nullptr, 0);
    if (size <= 0)
        return {};
    narrow_string list(static_cast<std::size_t>(size) + 256, '\0');
    auto const got = ::llistxattr(path.c_str(), list.data(), list.size());
    std::vector<narrow_string> names;
    for (std::size_t at = 0; got > 0 && at < static_cast<std::size_t>(got); at += names.back().size() + 1)
        names.emplace_back(list.c_str() + at);
    return names;
}

bool is_acl(std::string_view name) { return name.starts_with("system.posix_acl_"); }

/// The library carries its own, and labels of the system belong to where a file is.
bool is_foreign(std::string_view name) {
    return !name.starts_with("user.socle.") && !name.starts_with("system.") && name != "security.selinux";
}

bool copy(narrow_string const & name, narrow_string const & from, narrow_string const & to) {
    std::vector<char> value(65536);
    auto const size = ::lgetxattr(from.c_str(), name.c_str(), value.data(), value.size());
    return size >= 0 && ::lsetxattr(to.c_str(), name.c_str(), value.data(), static_cast<std::size_t>(size), 0) == 0;
}

} // namespace

bool has_more(narrow_string const & path) {
    auto const size = ::llistxattr(path.c_str(), nullptr, 0);
    return size > 0 || (size < 0 && errno != ENOTSUP);
}

/// A path through /proc costs the host three times what a bare name does.
listed_names::listed_names(host::folder const & folder) : folder_(folder.path()) {
    int const before = ::open(".", O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (before >= 0 && ::chdir(folder_.c_str()) == 0)
        before_ = before;
    else
        ::close(before);
}

listed_names::~listed_names() {
    if (before_ == -1)
        return;
    // Where it could not be left, this can only fail if its owner has just closed it to the user.
    static_cast<void>(!::fchdir(static_cast<int>(before_)));
    ::close(static_cast<int>(before_));
}

bool listed_names::has_more(narrow_string const & name) const {
    return host::has_more(before_ == -1 ? folder_ + '/' + name : name);
}

bool has_unlisted(host::folder const & folder) {
    return ::getxattr(folder.path().c_str(), "system.ntfs_attrib", nullptr, 0) >= 0;
}

belongings belongings_of(narrow_string const & path) {
    belongings result;
    for (auto const & name : names_of(path)) {
        result.acls = result.acls || is_acl(name);
        result.attributes = result.attributes || is_foreign(name);
    }
    return result;
}

refusals give_belongings(narrow_string const & from, status const & known, narrow_string const & to,
                         belongings const & wanted) {
    refusals result;
    if (wanted.acls || wanted.attributes) {
        for (auto const & name : names_of(from)) {
            if (wanted.attributes && is_foreign(name))
                result.attributes = !copy(name, from, to) || result.attributes;
            if (wanted.acls && is_acl(name))
                result.acls = !copy(name, from, to) || result.acls;
        }
    }
    if (wanted.owner)
        result.owner = ::lchown(to.c_str(), known.owner, known.group) != 0;
    auto const now = status_of(to);
    // Whom such a program acts for must be whom it acted for before.
    constexpr uint32 acting = S_ISUID | S_ISGID;
    bool const same_owner = now.owner == known.owner && now.group == known.group;
    uint32 const mode = same_owner ? known.mode : known.mode & ~acting;
    result.mode = now.mode != mode && !give_mode(to, mode);
    return result;
}

bool may_give_owners() { return ::geteuid() == 0; }

bool give_mode(narrow_string const & path, uint32 mode) { return ::chmod(path.c_str(), mode) == 0; }

} // namespace host
