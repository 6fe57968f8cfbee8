#pragma once

#include <socle/any/string.h>

#include <vector>

/// Which entries of a tree count. Patterns are those of `any::string`: "*" stands for anything, and a name may go on
/// behind the pattern. A pattern with a "/" is for the path below the top, any other for the name.
class selection {
public:
    selection(std::vector<narrow_string> const & included, std::vector<narrow_string> const & excluded);

    /// `path` is the library's, from the top on. A folder counts unless it is excluded.
    bool counts(wide_string const & path, bool folder) const;

private:
    struct pattern {
        any::string text;
        bool whole_path;
    };
    static std::vector<pattern> patterns(std::vector<narrow_string> const & texts);
    static bool any_fits(std::vector<pattern> const & patterns, wide_string const & path);

    std::vector<pattern> included_, excluded_;
};
