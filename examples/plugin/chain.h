#pragma once

#include "plugin.h"

#include <vector>

/// A chain of filters on top of a source, each from a plug-in of its own.
class chain {
public:
    /// `source` has to outlive the chain.
    explicit chain(stream::input & source) : top_(&source) {}
    chain(chain const &) = delete;
    chain & operator=(chain const &) = delete;
    ~chain();

    /// Puts a filter of the plug-in on top.
    void add(plugin loaded);

    /// What comes out of the last filter.
    stream::input & top() const { return *top_; }

private:
    std::vector<plugin> plugins_;
    std::vector<std::unique_ptr<stream::input>> filters_;
    stream::input * top_;
};
