#include "bench/pieces_data.h"

#include <absl/strings/str_split.h>

#include <vector>

namespace {

[[maybe_unused]] bool const registered = [] {
    bench::add(bench::split_row, "absl::StrSplit", [](benchmark::State & state) {
        bench::split(state,
                     [](std::string const & text) -> std::vector<std::string> { return absl::StrSplit(text, ','); });
    });
    return true;
}();

} // namespace
