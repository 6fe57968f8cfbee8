#include "plugin.h"

#include <socle/un/exception.h>

#include <dlfcn.h>

namespace {

/// Until 1.0 a new MINOR may change classes; what was compiled with another one cannot be used.
bool fits(uint32 version) { return version / 100 == SOCLE_VERSION / 100 && version / 100 == basic::version() / 100; }

} // namespace

plugin::plugin(narrow_string const & folder, narrow_string const & name) {
    auto const refuse = [&](narrow_string const & words) { throw un::exception(words, name); };
    if (name.find('/') != narrow_string::npos)
        refuse("is no name of a filter");
    // All symbols now, so that a missing one is refused here; and none of them for other plug-ins.
    library_.reset(dlopen((folder + '/' + name + ".so").c_str(), RTLD_NOW | RTLD_LOCAL));
    if (!library_)
        refuse(dlerror());
    auto const function = reinterpret_cast<filter_function *>(dlsym(library_.get(), "socle_filter"));
    if (!function)
        refuse("has no filter");
    filter_ = function();
    if (!fits(filter_->version))
        refuse("was compiled with version " + std::to_string(filter_->version) + " of the library");
}

void plugin::unloading::operator()(void * library) const { dlclose(library); }
