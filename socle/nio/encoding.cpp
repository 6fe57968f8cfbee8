#include "socle/nio/encoding.h"

#include "socle/platform/code_pages.h"

#include <algorithm>

namespace nio {

namespace {

constexpr int ansi = -1;
constexpr int utf8 = -3;

bool countable(std::size_t size) { return size > 0 && size <= UINT32_MAX; }

} // namespace

narrow_string encode(wide_string const & text, int encoding) {
    narrow_string out;
    if (encoding == utf8)
        _utf8_encode(text, out);
    else
        _narrowen(text, out, encoding);
    return out;
}

wide_string decode(narrow_string const & bytes, int encoding) {
    wide_string out;
    if (encoding == utf8)
        _utf8_decode(bytes, out, true);
    else
        _widen(bytes, out, encoding);
    return out;
}

int _codepage(int encoding) {
    if (encoding > 0)
        return encoding;
    return static_cast<int>(encoding == ansi ? platform::GetACP() : platform::GetOEMCP());
}

void _narrowen(wide_string const & text, narrow_string & out, int encoding) {
    out.clear();
    if (!countable(text.size()))
        return;
    auto const page = static_cast<uint32>(_codepage(encoding));
    auto const count = static_cast<uint32>(text.size());
    auto const convert = [&](char * to, uint32 capacity) {
        return platform::WideCharToMultiByte(page, text.data(), count, to, capacity, "_", nullptr);
    };
    // Two bytes a unit are enough for all pages but UTF-8, which is asked for its size.
    bool const enough = page != platform::CP_UTF8 && count <= UINT32_MAX / 2;
    out.resize(enough ? 2 * std::size_t(count) : convert(nullptr, 0));
    if (!out.empty())
        out.resize(convert(out.data(), static_cast<uint32>(out.size())));
    out.resize(out.find_last_not_of('\0') + 1);
}

void _widen(narrow_string const & bytes, wide_string & out, int encoding) {
    out.clear();
    if (!countable(bytes.size()))
        return;
    auto const page = static_cast<uint32>(_codepage(encoding));
    auto const count = static_cast<uint32>(bytes.size());
    // A byte gives one unit at most.
    out.resize(count);
    out.resize(platform::MultiByteToWideChar(page, bytes.data(), count, out.data(), count));
}

void translate(wide_string & text, char16_t from, char16_t to) {
    if (from == to)
        return;
    std::replace(text.begin(), text.end(), to, u'_');
    std::replace(text.begin(), text.end(), from, to);
}

} // namespace nio
