#include "socle/platform/utf8_conversions.h"
#include "socle/platform/win32/host/system.h"

#include <algorithm>
#include <climits>
#include <string>

namespace platform {

namespace {

/// The pages that are listed, in this order, where they are installed: those of ordinary programs, of consoles, East
/// Asian, Macintosh and ISO ones, and at last the ones of mail.
constexpr uint32 listed_pages[] = {
    1250,  1251,  1252,  1253,  1254,  1255,  1256,  1257,  1258,  437,   737,   775,   850,
    852,   855,   857,   858,   860,   861,   862,   863,   864,   865,   866,   869,   874,
    932,   936,   949,   950,   10000, 10007, 10017, 10029, 10079, 28591, 28592, 28593, 28594,
    28595, 28596, 28597, 28598, 28599, 28603, 28605, 20866, 21866, 20127,
};

/// Pages that take no flags: UTF-7, the large Chinese one, those with escapes, and of symbols.
bool takes_flags(uint32 page) {
    constexpr uint32 gb18030 = 54936, symbols = 42, utf_7 = 65000;
    bool const escapes = page >= 50220 && page <= 50229;
    bool const indian = page >= 57002 && page <= 57011;
    return page != utf_7 && page != gb18030 && page != symbols && !escapes && !indian;
}

/// Systems differ in how many characters they take bad UTF-8 for, so that page is the library's own.
bool is_utf8(uint32 page, uint32 count) { return page == CP_UTF8 && count != 0; }

/// The system counts with a sign, and takes a count of -1 for text that ends in a zero.
bool can_count(uint32 from, uint32 to) {
    return win32::report_code(from <= INT_MAX && to <= INT_MAX ? 0 : ERROR_INSUFFICIENT_BUFFER);
}

} // namespace

uint32 GetACP() { return ::GetACP(); }

uint32 GetOEMCP() { return ::GetOEMCP(); }

bool EnumSystemCodePagesA(std::function<bool(char const *)> const & page) {
    for (uint32 const number : listed_pages)
        if (::IsValidCodePage(number) && !page(std::to_string(number).c_str()))
            break;
    return true;
}

uint32 MultiByteToWideChar(uint32 page, char const * from, uint32 count, char16_t * to, uint32 capacity) {
    if (is_utf8(page, count))
        return decode_utf8(from, count, to, capacity);
    if (!can_count(count, capacity))
        return 0;
    auto * const wide = reinterpret_cast<wchar_t *>(to);
    int const size = ::MultiByteToWideChar(page, 0, from, static_cast<int>(count), wide, static_cast<int>(capacity));
    return static_cast<uint32>(win32::report(size));
}

uint32 WideCharToMultiByte(uint32 page, char16_t const * from, uint32 count, char * to, uint32 capacity,
                           char const * default_character, bool * used_default) {
    if (is_utf8(page, count) && used_default == nullptr)
        return encode_utf8(from, count, to, capacity);
    if (!can_count(count, capacity) || !win32::report_code(page == CP_UTF8 ? ERROR_INVALID_PARAMETER : 0))
        return 0;
    auto const * const wide = reinterpret_cast<wchar_t const *>(from);
    // Best fit would give a letter for another one, and not tell.
    DWORD const flags = takes_flags(page) ? WC_NO_BEST_FIT_CHARS : 0;
    BOOL used = FALSE;
    int const size = ::WideCharToMultiByte(page, flags, wide, static_cast<int>(count), to, static_cast<int>(capacity),
                                           default_character, used_default != nullptr ? &used : nullptr);
    if (size > 0 && used_default != nullptr)
        *used_default = used;
    return static_cast<uint32>(win32::report(size));
}

} // namespace platform
