#include "chain.h"

#include <utility>

/// From the top down, and all filters before any plug-in.
chain::~chain() {
    while (!filters_.empty())
        filters_.pop_back();
}

void chain::add(plugin loaded) {
    plugins_.push_back(std::move(loaded));
    filters_.push_back(plugins_.back().filter_of(*top_));
    top_ = filters_.back().get();
}
