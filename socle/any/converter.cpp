#include "socle/any/converter.h"

#include "socle/platform/code_pages.h"
#include "socle/un/digits.h"

#include <algorithm>
#include <limits>
#include <mutex>

namespace any {

namespace {

constexpr std::size_t largest_count = std::numeric_limits<uint32>::max();

/// Fills the front of `result`, which holds the largest size wanted, and cuts it to what was written.
bool convert(wide_string const & text, narrow_string & result, uint32 page) {
    bool used_default = false;
    std::size_t count =
        platform::WideCharToMultiByte(page, text.data(), static_cast<uint32>(text.size()), result.data(),
                                      static_cast<uint32>(result.size()), nullptr, &used_default);
    if (count == 0 || used_default)
        return false;
    while (count != 0 && result[count - 1] == '\0')
        --count;
    result.resize(count);
    return true;
}

} // namespace

converter::converter() : converter(static_cast<int>(platform::GetACP()), static_cast<int>(platform::GetOEMCP())) {}

converter::converter(int ansi_page, int oem_page) : ansi_page_(ansi_page), oem_page_(oem_page) {
    static std::once_flag filled;
    std::call_once(filled, fill_installed_pages);
}

void converter::fill_installed_pages() {
    installed_pages_.assign(1, platform::GetACP());
    platform::EnumSystemCodePagesA([](char const * number) {
        installed_pages_.push_back(static_cast<uint32>(un::read(number, 10)));
        return true;
    });
}

bool converter::to_unicode(narrow_string const & text, wide_string & result, bool ansi) const {
    result.clear();
    if (text.empty() || text.size() > largest_count)
        return text.empty();
    result.resize(text.size());
    auto const size = static_cast<uint32>(text.size());
    result.resize(platform::MultiByteToWideChar(page(ansi), text.data(), size, result.data(), size));
    return !result.empty();
}

wide_string converter::to_unicode(narrow_string const & text, bool ansi) const {
    wide_string result;
    to_unicode(text, result, ansi);
    return result;
}

bool converter::from_unicode(wide_string const & text, narrow_string & result, bool ansi) const {
    result.clear();
    if (text.empty() || text.size() > largest_count / 2)
        return text.empty();
    // Room for two bytes a unit. A page that needs more counts as lacking the text.
    result.resize(2 * text.size());
    if (convert(text, result, page(ansi))
        || std::ranges::any_of(installed_pages_, [&](uint32 page) { return convert(text, result, page); }))
        return true;
    result.clear();
    return false;
}

narrow_string converter::from_unicode(wide_string const & text, bool ansi) const {
    narrow_string result;
    from_unicode(text, result, ansi);
    return result;
}

} // namespace any
