#include "library.h"

#include <dlfcn.h>

namespace host {

// All symbols now, so that a missing one is refused here; and none of them for other libraries.
void * load(narrow_string const & path, narrow_string & failure) {
    void * const library = dlopen((path + ".so").c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr)
        failure = dlerror();
    return library;
}

void * find(void * library, char const * name) { return dlsym(library, name); }

void unload(void * library) { dlclose(library); }

} // namespace host
