#include "socle/platform/code_page_corrections.h"

#include <algorithm>

namespace platform {

namespace {

/// Bytes that mean something else than on the host, or nothing.
constexpr struct {
    uint32 page;
    unsigned char byte;
    char16_t unit;
} bytes[] = {
    {864, 0x25, u'%'},
    {1255, 0xCA, 0x05BA},
    {10000, 0xBD, 0x2126},
    {10000, 0xC6, 0x2206},
    {10000, 0xF0, 0xF8FF},
    {10007, 0xA2, 0x00A2},
    {10007, 0xB6, 0x2202},
    {10079, 0xA0, 0x00DD},
    {10079, 0xBD, 0x2126},
    {10079, 0xC6, 0x2206},
    {10079, 0xD0, 0x2013},
    {10079, 0xD1, 0x2014},
    {10079, 0xD7, 0x25CA},
    {10079, 0xDC, 0x00D0},
    {10079, 0xDD, 0x00F0},
    {10079, 0xE0, 0x00FD},
    {10079, 0xF0, 0xF8FF},
    {10079, 0xF6, 0x02C6},
    {10079, 0xF7, 0x02DC},
    {21866, 0xAE, 0x045E},
    {21866, 0xBE, 0x040E},
    {28597, 0xA1, 0x02BD},
    {28597, 0xA2, 0x02BC},
    {28597, 0xA4, code_page::undefined},
    {28597, 0xA5, code_page::undefined},
    {28597, 0xAA, code_page::undefined},
    {28598, 0xAF, 0x203E},
    {28598, 0xFD, code_page::undefined},
    {28598, 0xFE, code_page::undefined},
};

/// Pairs for characters of the user: those in these rows and columns that the host leaves undefined mean the private
/// units from `unit` on.
constexpr struct {
    uint32 page;
    unsigned char first_lead, last_lead, first_trail, last_trail;
    char16_t unit;
} user_pairs[] = {
    {936, 0xAA, 0xAF, 0xA1, 0xFE, 0xE000}, {936, 0xF8, 0xFE, 0xA1, 0xFE, 0xE234}, {936, 0xA1, 0xA7, 0x40, 0xA0, 0xE4C6},
    {936, 0xA2, 0xA7, 0xA1, 0xFE, 0xE766}, {936, 0xA8, 0xA9, 0x40, 0xFE, 0xE7BC}, {936, 0xD7, 0xD7, 0xFA, 0xFE, 0xE810},
    {936, 0xFE, 0xFE, 0x50, 0xA0, 0xE815}, {949, 0xC9, 0xC9, 0xA1, 0xFE, 0xE000}, {949, 0xFE, 0xFE, 0xA1, 0xFE, 0xE05E},
    {950, 0xFA, 0xFE, 0x40, 0xFE, 0xE000}, {950, 0x8E, 0xA0, 0x40, 0xFE, 0xE311}, {950, 0x81, 0x8D, 0x40, 0xFE, 0xEEB8},
};

/// What undefined bytes from `from` on mean: the units from `unit` on, which are private ones, but for ASCII, where a
/// byte means its lower seven bits.
constexpr struct undefined_row {
    uint32 page;
    char16_t unit;
    unsigned from = 0xA0;
} undefined_bytes[] = {
    {857, 0xF8BB},   {864, 0xF8BE},   {874, 0xF8C1},   {932, 0xF8F0},   {936, 0xF8F5},
    {949, 0xF8F7},   {950, 0xF8F8},   {1253, 0xF8F9},  {1255, 0xF88D},  {1257, 0xF8FC},
    {28593, 0xF7F5}, {28596, 0xF7C8}, {28597, 0xF7C2}, {28598, 0xF79C}, {20127, 0x0000, 0x80},
};

/// Pairs of characters that are there twice.
constexpr struct {
    uint32 page;
    unsigned first, last;
} second_forms[] = {{932, 0xED40, 0xEEFC}, {950, 0xA2A4, 0xA2A7}, {950, 0xA2CC, 0xA2CE}};

/// Whether any pair of the page ends with each byte.
std::array<bool, 256> trails(code_page const & page) {
    std::array<bool, 256> found{};
    for (std::size_t code = 0; code < page.pairs.size(); ++code)
        found[code % 256] |= page.pairs[code] != code_page::undefined;
    return found;
}

void add_user_pairs(uint32 number, code_page & page) {
    auto const trail = trails(page);
    for (auto row : user_pairs) {
        if (row.page != number)
            continue;
        for (unsigned first = row.first_lead; first <= row.last_lead; ++first) {
            page.lead[first] = true;
            for (unsigned second = row.first_trail; second <= row.last_trail; ++second)
                if (char16_t & unit = page.pairs[first * 256 + second]; trail[second] && unit == code_page::undefined)
                    unit = row.unit++;
        }
    }
}

/// Undefined bytes below the private ones mean the unit of their own value; in a page without a row, the rest nothing.
void add_undefined_bytes(uint32 number, code_page & page) {
    auto const row = std::ranges::find(undefined_bytes, number, &undefined_row::page);
    bool const has_row = row != std::end(undefined_bytes);
    unsigned const from = has_row ? row->from : 0xA0;
    char16_t next = has_row ? row->unit : code_page::undefined;
    for (unsigned byte = 0; byte < 0x100; ++byte)
        if (page.single[byte] == code_page::undefined && !page.lead[byte])
            page.single[byte] = byte < from ? static_cast<char16_t>(byte) : has_row ? next++ : next;
}

} // namespace

void correct(uint32 number, code_page & page) {
    for (auto const & row : bytes)
        if (row.page == number)
            page.single[row.byte] = row.unit;
    if (number == 932)
        page.replacement = u'\x30FB';
    add_user_pairs(number, page);
    add_undefined_bytes(number, page);
}

bool is_second_form(uint32 number, unsigned code) {
    return std::ranges::any_of(
        second_forms, [&](auto const & row) { return row.page == number && row.first <= code && code <= row.last; });
}

} // namespace platform
