#include "socle/platform/code_pages.h"

#include "socle/basic/ascii_internal.h"
#include "socle/platform/errors.h"
#include "socle/platform/posix/text/code_page_tables.h"
#include "socle/platform/unicode.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace platform {

namespace {

using basic::ascii::copy_ascii;
using basic::ascii::is_ascii;
using basic::ascii::step;
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

uint32 fail(uint32 code) {
    SetLastError(code);
    return 0;
}

/// Stores what there is room for by then.
template <class Unit>
class store {
public:
    explicit store(Unit * to) : first_(to), to_(to) {}

    void put(Unit unit) { *to_++ = unit; }
    template <class From>
    void put_ascii(From const * from) {
        copy_ascii(from, to_);
        to_ += step;
    }
    uint64 count() const { return uint64(to_ - first_); }

private:
    Unit * first_;
    Unit * to_;
};

/// Counts what would be stored.
template <class Unit>
class counter {
public:
    void put(Unit) { ++count_; }
    template <class From>
    void put_ascii(From const *) {
        count_ += step;
    }
    uint64 count() const { return count_; }

private:
    uint64 count_ = 0;
};

/// Converts [from, end), where ASCII means itself, a step at a time: whole steps of ASCII at once, the rest of a text
/// character by character with `next(from, end, out)`.
template <class From, class Out, class Next>
void convert_steps(From const * from, From const * end, Out & out, Next next) {
    while (from != end) {
        if (std::size_t(end - from) >= step && is_ascii(from)) {
            out.put_ascii(from);
            from += step;
            continue;
        }
        for (std::size_t i = 0; i < step && from != end; ++i)
            next(from, end, out);
    }
}

/// Runs `convert(out)` for its count and for its result. Without counting first if `most`, which no result of this
/// input can pass, fits.
template <class Unit, class Convert>
uint32 convert_to(Unit * to, uint32 capacity, uint64 most, Convert convert) {
    if (most > capacity) {
        counter<Unit> needed;
        convert(needed);
        if (needed.count() > (capacity == 0 ? UINT32_MAX : capacity))
            return fail(ERROR_INSUFFICIENT_BUFFER);
        if (capacity == 0)
            return static_cast<uint32>(needed.count());
    }
    store<Unit> out(to);
    convert(out);
    return static_cast<uint32>(out.count());
}

constexpr char16_t replacement = 0xFFFD;

unsigned char value(char byte) { return static_cast<unsigned char>(byte); }

uint32 decode_utf8(char const * from, char const * end, char16_t * to, uint32 capacity) {
    return convert_to(to, capacity, uint64(end - from), [&](auto & result) {
        convert_steps(from, end, result, [](char const *& at, char const * last, auto & out) {
            char32_t character;
            bool const good = unicode::read_utf8(at, last, character);
            unicode::put_utf16(good ? character : replacement, [&](char16_t unit) { out.put(unit); });
        });
    });
}

uint32 encode_utf8(char16_t const * from, char16_t const * end, char * to, uint32 capacity, bool & used_default) {
    return convert_to(to, capacity, 3 * uint64(end - from), [&](auto & result) {
        convert_steps(from, end, result, [&](char16_t const *& at, char16_t const * last, auto & out) {
            char16_t const unit = *at++;
            char32_t character = unit;
            if (unicode::is_high_surrogate(unit) && at != last && unicode::is_low_surrogate(*at)) {
                character = unicode::join_surrogates(unit, *at++);
            } else if (unicode::is_surrogate(unit)) {
                character = replacement;
                used_default = true;
            }
            unicode::put_utf8(character, [&](char byte) { out.put(byte); });
        });
    });
}

uint32 decode_single_bytes(code_page const & page, char const * from, char const * end, char16_t * to,
                           uint32 capacity) {
    auto const count = static_cast<uint32>(end - from);
    if (capacity == 0)
        return count;
    if (capacity < count)
        return fail(ERROR_INSUFFICIENT_BUFFER);
    for (; end - from >= 8; from += 8, to += 8)
        for (int i = 0; i < 8; ++i)
            to[i] = page.single[value(from[i])];
    for (; from != end; ++from)
        *to++ = page.single[value(*from)];
    return count;
}

/// All double-byte pages have ASCII for themselves.
uint32 decode_double_bytes(code_page const & page, char const * from, char const * end, char16_t * to,
                           uint32 capacity) {
    return convert_to(to, capacity, uint64(end - from), [&](auto & result) {
        convert_steps(from, end, result, [&page](char const *& at, char const * last, auto & out) {
            unsigned char const first = value(*at++);
            if (!page.lead[first]) {
                out.put(page.single[first]);
                return;
            }
            char16_t const unit = at == last ? code_page::undefined : page.pairs[first * 256u + value(*at)];
            bool const pair = unit != code_page::undefined;
            out.put(pair ? unit : replacement);
            at += pair;
        });
    });
}

uint32 encode_single_bytes(code_page const & page, char16_t const * from, char16_t const * end, char * to,
                           uint32 capacity, char default_character, bool & used_default) {
    auto const count = static_cast<uint32>(end - from);
    if (capacity != 0 && capacity < count)
        return fail(ERROR_INSUFFICIENT_BUFFER);
    unsigned lacking = 0;
    for (; from != end; ++from) {
        uint16 const code = page.bytes[*from];
        bool const lacks = code == 0 && *from != 0;
        lacking |= lacks;
        if (capacity != 0)
            *to++ = lacks ? default_character : static_cast<char>(code);
    }
    used_default = lacking != 0;
    return count;
}

uint32 encode_double_bytes(code_page const & page, char16_t const * from, char16_t const * end, char * to,
                           uint32 capacity, char default_character, bool & used_default) {
    return convert_to(to, capacity, 2 * uint64(end - from), [&](auto & result) {
        convert_steps(from, end, result, [&](char16_t const *& at, char16_t const *, auto & out) {
            char16_t const unit = *at++;
            uint16 const code = page.bytes[unit];
            if (code == 0 && unit != 0) {
                out.put(default_character);
                used_default = true;
                return;
            }
            if (code > 0xFF)
                out.put(static_cast<char>(code >> 8));
            out.put(static_cast<char>(code));
        });
    });
}

} // namespace

uint32 GetACP() { return locale_language().ansi; }

uint32 GetOEMCP() { return locale_language().oem; }

bool EnumSystemCodePagesA(std::function<bool(char const *)> const & page) {
    for (uint32 const number : posix::installed_pages())
        if (!page(std::to_string(number).c_str()))
            break;
    return true;
}

uint32 MultiByteToWideChar(uint32 page, char const * from, uint32 count, char16_t * to, uint32 capacity) {
    if (count == 0)
        return fail(ERROR_INVALID_PARAMETER);
    char const * const end = from + count;
    if (page == CP_UTF8)
        return decode_utf8(from, end, to, capacity);
    auto const * const tables = posix::find_page(page);
    if (!tables)
        return fail(ERROR_INVALID_PARAMETER);
    return tables->double_bytes ? decode_double_bytes(*tables, from, end, to, capacity)
                                : decode_single_bytes(*tables, from, end, to, capacity);
}

uint32 WideCharToMultiByte(uint32 page, char16_t const * from, uint32 count, char * to, uint32 capacity,
                           char const * default_character, bool * used_default) {
    if (count == 0)
        return fail(ERROR_INVALID_PARAMETER);
    auto const * const tables = page == CP_UTF8 ? nullptr : posix::find_page(page);
    if (!tables && page != CP_UTF8)
        return fail(ERROR_INVALID_PARAMETER);
    char16_t const * const end = from + count;
    char const other = default_character ? *default_character : '?';
    bool used = false;
    uint32 const result = !tables                ? encode_utf8(from, end, to, capacity, used)
                          : tables->double_bytes ? encode_double_bytes(*tables, from, end, to, capacity, other, used)
                                                 : encode_single_bytes(*tables, from, end, to, capacity, other, used);
    if (result > 0 && used_default)
        *used_default = used;
    return result;
}

} // namespace platform
