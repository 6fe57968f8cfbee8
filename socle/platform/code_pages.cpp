#include "socle/platform/code_pages.h"

#include "socle/platform/code_page_conversions.h"
#include "socle/platform/errors.h"
#include "socle/platform/utf8_conversions.h"

#include <string>

namespace platform {

namespace {

uint32 refuse() {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
}

} // namespace

bool EnumSystemCodePagesA(std::function<bool(char const *)> const & page) {
    for (uint32 const number : installed_pages())
        if (!page(std::to_string(number).c_str()))
            break;
    return true;
}

uint32 MultiByteToWideChar(uint32 page, char const * from, uint32 count, char16_t * to, uint32 capacity) {
    if (count == 0)
        return refuse();
    if (page == CP_UTF8)
        return decode_utf8(from, count, to, capacity);
    auto const * const tables = find_page(page);
    return tables ? decode(*tables, from, count, to, capacity) : refuse();
}

uint32 WideCharToMultiByte(uint32 page, char16_t const * from, uint32 count, char * to, uint32 capacity,
                           char const * default_character, bool * used_default) {
    if (count == 0)
        return refuse();
    if (page == CP_UTF8)
        return used_default ? refuse() : encode_utf8(from, count, to, capacity);
    auto const * const tables = find_page(page);
    if (!tables)
        return refuse();
    bool used;
    uint32 const result =
        encode(*tables, from, count, to, capacity, default_character ? *default_character : '?', used);
    if (result > 0 && used_default)
        *used_default = used;
    return result;
}

} // namespace platform
