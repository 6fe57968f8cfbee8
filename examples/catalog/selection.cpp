#include "selection.h"

#include <socle/nio/path.h>
#include <socle/platform/host.h>

#include <algorithm>

selection::selection(std::vector<narrow_string> const & included, std::vector<narrow_string> const & excluded)
    : included_(patterns(included)), excluded_(patterns(excluded)) {}

bool selection::counts(wide_string const & path, bool folder) const {
    if (any_fits(excluded_, path))
        return false;
    return folder || included_.empty() || any_fits(included_, path);
}

std::vector<selection::pattern> selection::patterns(std::vector<narrow_string> const & texts) {
    std::vector<pattern> result;
    for (auto const & text : texts)
        result.push_back({any::string(platform::from_host(text)), text.find('/') != narrow_string::npos});
    return result;
}

bool selection::any_fits(std::vector<pattern> const & patterns, wide_string const & path) {
    if (patterns.empty())
        return false;
    any::string const whole(path), leaf(nio::leaf(path, u'\\'));
    return std::any_of(patterns.begin(), patterns.end(),
                       [&](pattern const & p) { return (p.whole_path ? whole : leaf).pattern_match(p.text); });
}
