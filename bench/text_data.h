#pragma once

#include "bench/rows.h"
#include "socle/any/string.h"

#include <filesystem>
#include <random>
#include <vector>

/// The names that are matched, and the paths that are cut and joined.
namespace bench {

inline std::size_t const name_count = bench::sized(100'000);

/// Names of 6 to 30 characters, a few of them accented if asked for.
inline std::vector<any::string> const & names(bool accents) {
    static auto const make = [](bool accented) {
        std::mt19937 random(3);
        std::vector<any::string> made(name_count);
        for (auto & name : made) {
            for (std::size_t length = 2 + random() % 25; name.size() < length;)
                name +=
                    static_cast<char16_t>(accented && random() % 8 == 0 ? 0xE0 + random() % 16 : u'a' + random() % 26);
            name += random() % 4 == 0 ? u".txt" : u".png";
        }
        return made;
    };
    static std::vector<any::string> const made[] = {make(false), make(true)};
    return made[accents];
}

/// The same in the ANSI page or in UTF-8.
inline std::vector<std::string> narrow_names(bool accents, bool utf8) {
    std::vector<std::string> made;
    for (auto const & name : names(accents))
        if (utf8)
            made.push_back(std::filesystem::path(static_cast<std::u16string const &>(name)).string());
        else
            made.push_back(name.str(true));
    return made;
}

/// Five folders and a name each.
inline std::vector<any::string> const & paths() {
    static std::vector<any::string> const made = [] {
        auto const & parts = names(false);
        std::vector<any::string> all(name_count);
        for (std::size_t i = 0; i < name_count; ++i) {
            all[i] = u"/home";
            for (std::size_t k = 0; k < 5; ++k)
                all[i] += u"/" + parts[(i * 7 + k * 13) % name_count];
        }
        return all;
    }();
    return made;
}

inline std::vector<std::string> host_paths() {
    std::vector<std::string> made;
    for (auto const & path : paths())
        made.push_back(path.str(true));
    return made;
}

} // namespace bench
