#include "platform/code_pages.h"

#include "platform/errors.h"
#include "platform/posix/code_page_tables.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace platform {

namespace {

using posix::code_page;

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
            for (; names.size() >= length; names.remove_prefix(std::min(length + 1, names.size()))) {
                if (names.substr(0, length) == name.substr(0, length))
                    return name.size() >= length;
            }
            return false;
        };
        for (auto const & row : languages) {
            if (named(row.names, row.names.find('_') == 2 ? 5 : 2))
                return row;
        }
        return otherwise;
    }();
    return found;
}

uint32 fail(uint32 code) {
    SetLastError(code);
    return 0;
}

/// What a conversion stores to: only a count if there is no capacity. What does not fit is counted all the same.
template <class Unit>
class target {
public:
    target(Unit * to, uint32 capacity) : to_(to), capacity_(capacity) {}

    void put(Unit unit) {
        if (count_ < capacity_)
            to_[count_] = unit;
        ++count_;
    }

    /// Passes on the start of [from, end) that is ASCII, widened or narrowed.
    template <class From>
    From const * put_ascii(From const * from, From const * end) {
        constexpr std::size_t step = 16;
        while (std::size_t(end - from) >= step) {
            std::make_unsigned_t<From> bits = 0;
            for (std::size_t i = 0; i < step; ++i)
                bits = static_cast<std::make_unsigned_t<From>>(bits | static_cast<std::make_unsigned_t<From>>(from[i]));
            if (bits >= 0x80)
                break;
            if (count_ + step <= capacity_) {
                for (std::size_t i = 0; i < step; ++i)
                    to_[count_ + i] = static_cast<Unit>(from[i]);
            } else if (count_ < capacity_) {
                break;
            }
            count_ += step;
            from += step;
        }
        return from;
    }

    uint32 result() const {
        bool const fits = capacity_ == 0 ? count_ <= UINT32_MAX : count_ <= capacity_;
        return fits ? static_cast<uint32>(count_) : fail(ERROR_INSUFFICIENT_BUFFER);
    }

private:
    Unit * to_;
    uint32 capacity_;
    uint64 count_ = 0;
};

constexpr char16_t replacement = 0xFFFD;

unsigned char value(char byte) { return static_cast<unsigned char>(byte); }

/// The next character of UTF-8, at `at`, which is moved behind it. A bad sequence is U+FFFD, and ends before the first
/// byte that cannot belong to it.
char32_t next_character(char const *& at, char const * end) {
    unsigned char const lead = value(*at++);
    if (lead < 0x80)
        return lead;
    int const length = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
    if (lead < 0xC2 || lead > 0xF4)
        return replacement;
    unsigned char low = 0x80, high = 0xBF; // of the second byte: no overlong forms, surrogates, nor past U+10FFFF
    if (lead == 0xE0)
        low = 0xA0;
    else if (lead == 0xED)
        high = 0x9F;
    else if (lead == 0xF0)
        low = 0x90;
    else if (lead == 0xF4)
        high = 0x8F;
    char32_t character = lead & (0x3F >> length);
    for (int i = 0; i < length; ++i) {
        if (at == end || value(*at) < low || value(*at) > high)
            return replacement;
        character = character << 6 | (value(*at++) & 0x3F);
        low = 0x80;
        high = 0xBF;
    }
    return character;
}

uint32 decode_utf8(char const * from, char const * end, target<char16_t> to) {
    while ((from = to.put_ascii(from, end)) != end) {
        char32_t const character = next_character(from, end);
        if (character < 0x10000) {
            to.put(static_cast<char16_t>(character));
        } else {
            to.put(static_cast<char16_t>(0xD7C0 + (character >> 10)));
            to.put(static_cast<char16_t>(0xDC00 + (character & 0x3FF)));
        }
    }
    return to.result();
}

uint32 encode_utf8(char16_t const * from, char16_t const * end, target<char> to) {
    auto const put = [&](char32_t bits, int mark) { to.put(static_cast<char>(bits | static_cast<unsigned>(mark))); };
    while ((from = to.put_ascii(from, end)) != end) {
        char32_t character = *from++;
        if ((character & 0xFC00) == 0xD800 && from != end && (*from & 0xFC00) == 0xDC00)
            character = 0x10000 + ((character & 0x3FF) << 10) + (*from++ & 0x3FF);
        else if ((character & 0xF800) == 0xD800)
            character = replacement;
        if (character < 0x80) {
            put(character, 0);
        } else if (character < 0x800) {
            put(character >> 6, 0xC0);
            put(character & 0x3F, 0x80);
        } else if (character < 0x10000) {
            put(character >> 12, 0xE0);
            put(character >> 6 & 0x3F, 0x80);
            put(character & 0x3F, 0x80);
        } else {
            put(character >> 18, 0xF0);
            put(character >> 12 & 0x3F, 0x80);
            put(character >> 6 & 0x3F, 0x80);
            put(character & 0x3F, 0x80);
        }
    }
    return to.result();
}

uint32 decode_page(code_page const & page, char const * from, char const * end, target<char16_t> to) {
    while (from != end) {
        if (page.ascii && (from = to.put_ascii(from, end)) == end)
            break;
        unsigned char const first = value(*from++);
        if (!page.lead[first]) {
            to.put(page.single[first]);
            continue;
        }
        char16_t const unit = from == end ? code_page::undefined : page.pairs[first * 256u + value(*from)];
        bool const pair = unit != code_page::undefined;
        to.put(pair ? unit : replacement);
        from += pair;
    }
    return to.result();
}

uint32 encode_page(code_page const & page, char16_t const * from, char16_t const * end, target<char> to,
                   char default_character, bool & used_default) {
    while (from != end) {
        if (page.ascii && (from = to.put_ascii(from, end)) == end)
            break;
        char16_t const unit = *from++;
        uint16 const code = page.bytes[unit];
        if (code == 0 && unit != 0) {
            to.put(default_character);
            used_default = true;
        } else {
            if (code > 0xFF)
                to.put(static_cast<char>(code >> 8));
            to.put(static_cast<char>(code));
        }
    }
    return to.result();
}

} // namespace

uint32 GetACP() { return locale_language().ansi; }

uint32 GetOEMCP() { return locale_language().oem; }

bool EnumSystemCodePagesA(std::function<bool(char const *)> const & page) {
    for (uint32 const number : posix::installed_pages()) {
        if (!page(std::to_string(number).c_str()))
            break;
    }
    return true;
}

uint32 MultiByteToWideChar(uint32 page, char const * from, uint32 count, char16_t * to, uint32 capacity) {
    if (count == 0)
        return fail(ERROR_INVALID_PARAMETER);
    target<char16_t> const out(to, capacity);
    if (page == CP_UTF8)
        return decode_utf8(from, from + count, out);
    auto const * const tables = posix::find_page(page);
    return tables ? decode_page(*tables, from, from + count, out) : fail(ERROR_INVALID_PARAMETER);
}

uint32 WideCharToMultiByte(uint32 page, char16_t const * from, uint32 count, char * to, uint32 capacity,
                           char const * default_character, bool * used_default) {
    if (count == 0)
        return fail(ERROR_INVALID_PARAMETER);
    bool used = false;
    target<char> const out(to, capacity);
    auto const * const tables = page == CP_UTF8 ? nullptr : posix::find_page(page);
    if (!tables && page != CP_UTF8)
        return fail(ERROR_INVALID_PARAMETER);
    uint32 const result =
        tables ? encode_page(*tables, from, from + count, out, default_character ? *default_character : '?', used)
               : encode_utf8(from, from + count, out);
    if (result > 0 && used_default)
        *used_default = used;
    return result;
}

} // namespace platform
