#include "bench/pieces_data.h"

#include <boost/algorithm/string.hpp>

#include <vector>

namespace {

[[maybe_unused]] bool const registered = [] {
    bench::add(bench::split_row, "boost::split", [](benchmark::State & state) {
        bench::split(state, [](std::string const & text) {
            std::vector<std::string> parts;
            boost::split(parts, text, [](char c) { return c == ','; });
            return parts;
        });
    });
    return true;
}();

} // namespace
