#pragma once

#include "belongings.h"
#include "target_names.h"

/// How to carry.
struct carrying {
    fork_form form = fork_form::sidecar;
    /// Replaces what is there and older than the source.
    bool update = false;
    /// Reads back and compares each byte of what was carried, and of what was there already.
    bool verify = false;
    /// Makes nothing, and only tells what would be carried.
    bool dry = false;
    host::belongings keep;
    bool hard_links = false;
};
