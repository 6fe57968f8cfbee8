#include "host_folder.h"

#include <algorithm>

namespace host {

std::vector<found> folder::list() const {
    std::vector<found> result;
    each([&](narrow_string const & name, host::status const & known) { result.push_back({name, known}); });
    std::sort(result.begin(), result.end(), [](found const & a, found const & b) { return a.name < b.name; });
    return result;
}

std::vector<narrow_string> folder::names() const {
    std::vector<narrow_string> result;
    each_name([&](narrow_string const & name) { result.push_back(name); });
    std::sort(result.begin(), result.end());
    return result;
}

} // namespace host
