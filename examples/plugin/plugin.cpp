#include "plugin.h"

#include <socle/un/exception.h>

namespace {

/// Until 1.0 a new MINOR may change classes; what was compiled with another one cannot be used.
bool fits(uint32 version) { return version / 100 == SOCLE_VERSION / 100 && version / 100 == basic::version() / 100; }

} // namespace

plugin::plugin(narrow_string const & folder, narrow_string const & name) {
    auto const refuse = [&](narrow_string const & words) { throw un::exception(words, name); };
    if (name.find_first_of("/\\") != narrow_string::npos)
        refuse("is no name of a filter");
    narrow_string failure;
    library_.reset(host::load(folder + '/' + name, failure));
    if (!library_)
        refuse(failure);
    auto const function = reinterpret_cast<filter_function *>(host::find(library_.get(), "socle_filter"));
    if (!function)
        refuse("has no filter");
    filter_ = function();
    if (!fits(filter_->version))
        refuse("was compiled with version " + std::to_string(filter_->version) + " of the library");
}
