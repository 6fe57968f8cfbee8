#pragma once

#include <socle/basic/version.h>
#include <socle/stream/input.h>

#include <memory>

/// What the host and its plug-ins agree on.
struct filter {
    /// The version that the plug-in is compiled with.
    uint32 version;
    /// Makes a filter that reads from `source`, which outlives it. Class and code of the filter lie in the plug-in, so
    /// it has to go before the plug-in is unloaded.
    std::unique_ptr<stream::input> (*make)(stream::input & source);
};

/// The one function of a plug-in, `extern "C" socle_filter`. What it returns stays valid while the plug-in is loaded.
using filter_function = filter const *();
