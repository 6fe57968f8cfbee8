/// Conversions by code pages: of the platform layer, of the selectors, and of the converter that never replaces.

#include "socle/platform/code_pages.h"
#include "fuzz/support/feed.h"
#include "socle/any/converter.h"
#include "socle/nio/encoding.h"
#include "socle/platform/errors.h"

#include <vector>

namespace {

using fuzz::check;
using namespace platform;

std::vector<uint32> all_pages() {
    std::vector<uint32> pages = {CP_UTF8};
    EnumSystemCodePagesA([&](char const * number) {
        pages.push_back(static_cast<uint32>(std::stoul(number)));
        return true;
    });
    return pages;
}

/// Converts into `room` elements, and does not touch what is behind them.
template <class To>
std::basic_string<To> converted(uint32 room, auto convert) {
    std::basic_string<To> to(room + 1, To{'~'});
    uint32 const count = convert(to.data(), room);
    check(count <= room && to.back() == To{'~'});
    return to.substr(0, count);
}

/// Any room that is less refuses the whole.
template <class To>
void check_refusal(uint32 room, auto convert) {
    if (room == 0)
        return;
    SetLastError(0);
    check(converted<To>(room, convert).empty() && GetLastError() == ERROR_INSUFFICIENT_BUFFER);
}

wide_string decoded(uint32 page, narrow_string const & bytes) {
    auto const convert = [&](char16_t * to, uint32 room) {
        return MultiByteToWideChar(page, bytes.data(), static_cast<uint32>(bytes.size()), to, room);
    };
    uint32 const needed = convert(nullptr, 0);
    check(needed <= bytes.size() && (needed == 0) == bytes.empty());
    auto const result = converted<char16_t>(needed, convert);
    check(result.size() == needed);
    check_refusal<char16_t>(needed / 2, convert);
    check_refusal<char16_t>(std::max(needed, 1u) - 1, convert);
    return result;
}

/// Whether UTF-8, which does not tell, lacks some of a text: a lone surrogate.
bool lacks_some(wide_string const & text) {
    for (std::size_t i = 0; i < text.size(); ++i)
        if ((text[i] & 0xF800) == 0xD800) {
            if (text[i] >= 0xDC00 || i + 1 == text.size() || (text[i + 1] & 0xFC00) != 0xDC00)
                return true;
            ++i;
        }
    return false;
}

narrow_string encoded(uint32 page, wide_string const & text, char const * other, bool & used) {
    bool * const told = page == CP_UTF8 ? nullptr : &used;
    used = page == CP_UTF8 && lacks_some(text);
    auto const convert = [&](char * to, uint32 room) {
        return WideCharToMultiByte(page, text.data(), static_cast<uint32>(text.size()), to, room, other, told);
    };
    uint32 const needed = convert(nullptr, 0);
    bool const first_used = used;
    check((needed == 0) == text.empty() && needed <= 3 * text.size());
    auto const result = converted<char>(needed, convert);
    check(result.size() == needed && used == first_used);
    check_refusal<char>(needed / 2, convert);
    check_refusal<char>(std::max(needed, 1u) - 1, convert);
    return result;
}

} // namespace

void fuzz::run(std::string_view input) {
    static auto const pages = all_pages();
    feed in(input);
    uint32 const page = pages[in.below(static_cast<uint32>(pages.size()))];
    char const replacement[] = {static_cast<char>(in.byte()), '\0'};
    narrow_string const bytes(in.rest());
    wide_string const text = feed::units(bytes);

    // Bytes that a page reads are text, which it writes so that it reads it again.
    wide_string const read = decoded(page, bytes);
    bool used = false;
    narrow_string const written = encoded(page, read, nullptr, used);
    if (!used)
        check(decoded(page, written) == read);
    check(nio::decode(bytes, static_cast<int>(page)) == read);

    // So it does with any text that it holds the whole of.
    narrow_string out = encoded(page, text, replacement[0] != '\0' ? replacement : nullptr, used);
    if (!used)
        check(decoded(page, out) == text);

    out = encoded(page, text, "_", used);
    while (!out.empty() && out.back() == '\0')
        out.pop_back();
    check(nio::encode(text, static_cast<int>(page)) == out);

    // Without replacing: what comes is in some page that holds the text.
    any::converter const converter(static_cast<int>(page), 437);
    for (bool const ansi : {true, false}) {
        wide_string wide = u"old";
        check(converter.to_unicode(bytes, wide, ansi) && wide == (ansi ? read : decoded(437, bytes)));
        narrow_string narrow = "old";
        if (converter.from_unicode(text, narrow, ansi) && !text.empty()) {
            wide_string kept = text;
            while (!kept.empty() && kept.back() == u'\0')
                kept.pop_back();
            bool held = false;
            for (uint32 const each : pages)
                held = held || decoded(each, narrow) == kept;
            check(held);
        }
    }
}
