#include "socle/platform/code_page_tables.h"

#include "socle/platform/code_page_corrections.h"
#include "socle/platform/host_pages.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <mutex>

namespace platform {

namespace {

/// In the order of the list, in which a text looks for a page that holds it: the pages of ordinary programs, of
/// consoles, East Asian, Macintosh and ISO ones, KOI8 and ASCII.
constexpr uint32 numbers[] = {
    1250,  1251,  1252,  1253,  1254,  1255,  1256,  1257,  1258,  437,   737,   775,   850,
    852,   855,   857,   858,   860,   861,   862,   863,   864,   865,   866,   869,   874,
    932,   936,   949,   950,   10000, 10007, 10017, 10029, 10079, 28591, 28592, 28593, 28594,
    28595, 28596, 28597, 28598, 28599, 28603, 28605, 20866, 21866, 20127,
};

/// Fills in the way back. Of several codes for a unit the first counts.
void invert(uint32 number, code_page & page) {
    page.codes.resize(0x10000);
    auto const add = [&](char16_t unit, unsigned code) {
        if (unit != code_page::undefined && unit != 0 && page.codes[unit] == 0)
            page.codes[unit] = static_cast<uint16>(code);
    };
    for (unsigned byte = 0; byte < 0x100; ++byte)
        add(page.single[byte], byte);
    for (bool const second : {false, true})
        for (unsigned code = 0x100; code < page.pairs.size(); ++code)
            if (is_second_form(number, code) == second)
                add(page.pairs[code], code);
}

std::unique_ptr<code_page> build(uint32 number) {
    auto page = std::make_unique<code_page>();
    if (!read_host_page(number, *page))
        return nullptr;
    correct(number, *page);
    invert(number, *page);
    std::ranges::replace(page->single, code_page::undefined, page->replacement);
    std::ranges::replace(page->pairs, code_page::undefined, page->replacement);
    return page;
}

struct slot {
    std::once_flag once;
    std::unique_ptr<code_page> page;
};

} // namespace

std::vector<uint32> installed_pages() {
    std::vector<uint32> pages;
    std::ranges::copy_if(numbers, std::back_inserter(pages), has_host_page);
    return pages;
}

code_page const * find_page(uint32 number) {
    static slot slots[std::size(numbers)];
    auto const found = std::ranges::find(numbers, number);
    if (found == std::end(numbers))
        return nullptr;
    slot & place = slots[found - numbers];
    std::call_once(place.once, [&] { place.page = build(number); });
    return place.page.get();
}

} // namespace platform
