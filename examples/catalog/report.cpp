#include "report.h"

#include "common/host_text.h"

#include <socle/platform/host.h>

#include <algorithm>
#include <functional>
#include <iostream>

namespace {

narrow_string counted(uint64 count, narrow_string const & one, narrow_string const & more) {
    return std::to_string(count) + ' ' + (count == 1 ? one : more);
}

} // namespace

report::report(narrow_string const & typed, wide_string const & root, bool quiet)
    : typed_(typed), root_(root), quiet_(quiet) {
    while (typed_.size() > 1 && typed_.ends_with('/'))
        typed_.pop_back();
}

narrow_string report::name(wide_string const & path) const {
    wide_string const below = path.substr(std::min(path.size(), root_.size()));
    auto const begin = below.find_first_not_of(u'\\');
    if (begin == wide_string::npos)
        return readable_path(typed_);
    return readable_path(typed_ + (typed_.ends_with('/') ? "" : "/") + platform::to_host(below.substr(begin)));
}

void report::complain(wide_string const & path, narrow_string const & words) {
    bar_.hide();
    std::cerr << "catalog: " << name(path) << ' ' << words << '\n';
    ++complaints_[words.substr(0, words.find(':'))];
}

void report::leave_out(narrow_string const & kind) { ++left_out_[kind]; }

void report::show(bool carrying, bool dry) const {
    if (quiet_)
        return;
    uint64 complaints = 0;
    for (auto const & [kind, count] : complaints_)
        complaints += count;
    std::cerr << "catalog: " << counted(files, "file, ", "files, ") << counted(folders, "folder", "folders");
    if (others > 0)
        std::cerr << ", " << counted(others, "other", "others");
    if (skipped > 0)
        std::cerr << ", " << skipped << " passed over";
    if (carrying) {
        std::cerr << "; " << counted(carried, "file", "files") << (dry ? " to carry, " : " carried, ") << there_already
                  << " there already";
    }
    if (replaced > 0)
        std::cerr << ", " << replaced << (dry ? " to replace" : " replaced");
    std::cerr << "; " << counted(complaints, "complaint\n", "complaints\n");
    for (auto const & [kind, count] : complaints_)
        std::cerr << "catalog: " << count << " times: " << kind << '\n';
    for (auto const & kinds : {std::cref(left_out_), std::cref(left_behind_)})
        for (auto const & [kind, count] : kinds.get())
            std::cerr << "catalog: left out: " << count << ' ' << kind << '\n';
    if (names_changed_ > 0)
        std::cerr << "catalog: names changed: " << names_changed_ << '\n';
}
