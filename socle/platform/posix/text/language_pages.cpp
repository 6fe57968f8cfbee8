#include "socle/platform/code_pages.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace platform {

namespace {

struct language {
    std::string_view names; // of two letters, or five with the country, apart by blanks
    uint32 ansi, oem;
};

/// The first row that has the locale's language counts.
constexpr language languages[] = {
    {"zh_TW zh_HK zh_MO", 950, 950},
    {"zh", 936, 936},
    {"ja", 932, 932},
    {"ko", 949, 949},
    {"th", 874, 874},
    {"vi", 1258, 1258},
    {"cs hr hu pl ro sk sl sq bs", 1250, 852},
    {"be bg kk ky mk mn ru tt uk", 1251, 866},
    {"sr", 1251, 855},
    {"el", 1253, 737},
    {"az tr", 1254, 857},
    {"he iw yi", 1255, 862},
    {"ar fa ur", 1256, 864},
    {"et lt lv", 1257, 775},
    {"af ca da de es eu fi fo fr ga gl id is it ms nb nl nn no pt sv sw", 1252, 850},
};

language const & locale_language() {
    static constexpr language otherwise{"", 1252, 437};
    static language const & found = []() -> language const & {
        char const * locale = "";
        for (char const * variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
            char const * const value = std::getenv(variable);
            if (value && *value) {
                locale = value;
                break;
            }
        }
        std::string_view const name = locale;
        auto const named = [&](std::string_view names, std::size_t length) {
            if (name.size() > length && std::string_view("_.@").find(name[length]) == std::string_view::npos)
                return false;
            for (; names.size() >= length; names.remove_prefix(std::min(length + 1, names.size())))
                if (names.substr(0, length) == name.substr(0, length))
                    return name.size() >= length;
            return false;
        };
        for (auto const & row : languages)
            if (named(row.names, row.names.find('_') == 2 ? 5 : 2))
                return row;
        return otherwise;
    }();
    return found;
}

} // namespace

uint32 GetACP() { return locale_language().ansi; }

uint32 GetOEMCP() { return locale_language().oem; }

} // namespace platform
