#include "socle/platform/posix/host/extended_attributes.h"

namespace platform::posix {

host_error get_attribute(host::at const & file, char const * name, narrow_string & value) {
    char block[256];
    ssize_t size = host::getxattr(file, name, block, sizeof block);
    if (size >= 0) {
        value.assign(block, static_cast<std::size_t>(size));
        return {};
    }
    value.clear();
    // It may grow between two calls.
    while (size < 0 && errno == ERANGE) {
        if (size = host::getxattr(file, name, nullptr, 0); size < 0)
            break;
        value.resize(static_cast<std::size_t>(size) + 1);
        size = host::getxattr(file, name, value.data(), value.size());
    }
    host_error const error = host_error::last_if(size < 0);
    value.resize(error ? 0 : static_cast<std::size_t>(size));
    return error;
}

host_error get_record_text(host::at const & file, char const * name, narrow_string & text) {
    host_error const error = get_attribute(file, name, text);
    return error == ENODATA || error == ENOTSUP || error == EACCES ? host_error() : error;
}

host_error attribute_names::list(host::at const & file) {
    ssize_t const size = host::listxattr(file, block_, sizeof block_);
    size_ = size > 0 ? static_cast<std::size_t>(size) : 0;
    all_ = size >= 0 || errno != ERANGE;
    return host_error::last_if(size < 0 && all_ && errno != ENOTSUP);
}

bool attribute_names::may_have(std::string_view name) const {
    std::string_view rest(block_, size_);
    while (!rest.empty() && rest.substr(0, rest.find('\0')) != name)
        rest.remove_prefix(rest.find('\0') + 1);
    return !rest.empty() || !all_;
}

host_error list_attributes(host::at const & file, std::vector<narrow_string> & names) {
    names.clear();
    std::vector<char> block(1024);
    ssize_t size = host::listxattr(file, block.data(), block.size());
    if (size < 0 && errno == ERANGE) {
        block.resize(65536); // the most that the host gives
        size = host::listxattr(file, block.data(), block.size());
    }
    if (size < 0)
        return host_error::last_if(errno != ENOTSUP);
    for (std::size_t at = 0; at < static_cast<std::size_t>(size); at += names.back().size() + 1)
        names.emplace_back(block.data() + at);
    return {};
}

host_error set_attribute(host::at const & file, char const * name, narrow_string const & value, int flags) {
    auto const set = [&] {
        return host_error::last_if(host::setxattr(file, name, value.data(), value.size(), flags) != 0);
    };
    host_error error = set();
    struct stat status {};
    if (error == EACCES && host::stat(file, &status) == 0 && (status.st_mode & S_IWUSR) == 0
        && host::chmod(file, (status.st_mode & 07777) | S_IWUSR | lifted_mark(status.st_mode)) == 0) {
        error = set();
        static_cast<void>(!host::chmod(file, status.st_mode & 07777));
    }
    return error;
}

} // namespace platform::posix
