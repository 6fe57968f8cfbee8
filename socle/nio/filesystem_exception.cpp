#include "socle/nio/filesystem_exception.h"

#include "socle/nio/encoding.h"
#include "socle/platform/error_text.h"
#include "socle/platform/errors.h"

#include <string>
#include <typeinfo>

namespace nio {

namespace {

// Kept in the library, so that the exception outlives the plug-in that threw it.
[[gnu::used]] std::type_info const * const kept = &typeid(filesystem_exception);

} // namespace

filesystem_exception::filesystem_exception(narrow_string const & message, wide_string const & path)
    : exception(message), error_(platform::GetLastError()) {
    if (error_ != platform::ERROR_BROKEN_PIPE) {
        this->message(message + " (" + encode(path, -1) + ") " + std::to_string(error_) + ' '
                      + platform::system_error_text(error_));
    }
}

filesystem_exception::filesystem_exception(filesystem_exception const &) = default;

filesystem_exception & filesystem_exception::operator=(filesystem_exception const &) = default;

filesystem_exception::~filesystem_exception() = default;

} // namespace nio
