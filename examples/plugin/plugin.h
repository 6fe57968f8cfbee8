#pragma once

#include "filter.h"
#include "library.h"

/// A plug-in, loaded as long as the object lives.
class plugin {
public:
    /// Loads the library `name` from the folder. Throws a `un::exception` if that is no plug-in for this host.
    plugin(narrow_string const & folder, narrow_string const & name);

    /// A filter of the plug-in, which has to go before this object.
    std::unique_ptr<stream::input> filter_of(stream::input & source) const { return filter_->make(source); }

private:
    struct unloading {
        void operator()(void * library) const { host::unload(library); }
    };

    std::unique_ptr<void, unloading> library_;
    filter const * filter_;
};
