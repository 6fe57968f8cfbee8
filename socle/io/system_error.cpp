#include "socle/io/system_error.h"

#include "socle/io/exception.h"
#include "socle/platform/error_text.h"
#include "socle/platform/errors.h"

#include <string>

namespace io {

void raise_system_error(any::path const & path, narrow_string const & message, narrow_string const & origin) {
    uint32 const code = platform::GetLastError();
    if (code == platform::ERROR_BROKEN_PIPE)
        return;
    throw exception(message + " \"" + path.full_string().str(true) + "\"; " + std::to_string(code) + ' '
                        + platform::system_error_text(code),
                    origin, static_cast<int>(code));
}

} // namespace io
