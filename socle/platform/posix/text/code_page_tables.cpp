#include "socle/platform/posix/text/code_page_tables.h"

#include <cerrno>
#include <iconv.h>
#include <memory>
#include <mutex>

namespace platform::posix {

namespace {

struct page_name {
    uint32 number;
    char const * name;
};

/// In the order of the list: the pages of ordinary programs, of consoles, East Asian, Macintosh and ISO ones.
constexpr page_name names[] = {
    {1250, "CP1250"},       {1251, "CP1251"},
    {1252, "CP1252"},       {1253, "CP1253"},
    {1254, "CP1254"},       {1255, "CP1255"},
    {1256, "CP1256"},       {1257, "CP1257"},
    {1258, "CP1258"},       {437, "CP437"},
    {737, "CP737"},         {775, "CP775"},
    {850, "CP850"},         {852, "CP852"},
    {855, "CP855"},         {857, "CP857"},
    {858, "CP858"},         {860, "CP860"},
    {861, "CP861"},         {862, "CP862"},
    {863, "CP863"},         {864, "CP864"},
    {865, "CP865"},         {866, "CP866"},
    {869, "CP869"},         {874, "CP874"},
    {932, "CP932"},         {936, "CP936"},
    {949, "CP949"},         {950, "CP950"},
    {10000, "MACINTOSH"},   {10007, "MAC-CYRILLIC"},
    {10017, "MAC-UK"},      {10029, "MAC-CENTRALEUROPE"},
    {10079, "MAC-IS"},      {28591, "ISO-8859-1"},
    {28592, "ISO-8859-2"},  {28593, "ISO-8859-3"},
    {28594, "ISO-8859-4"},  {28595, "ISO-8859-5"},
    {28596, "ISO-8859-6"},  {28597, "ISO-8859-7"},
    {28598, "ISO-8859-8"},  {28599, "ISO-8859-9"},
    {28603, "ISO-8859-13"}, {28605, "ISO-8859-15"},
};

class conversion {
public:
    conversion(char const * to, char const * from) : handle_(iconv_open(to, from)) {}
    conversion(conversion const &) = delete;
    conversion & operator=(conversion const &) = delete;
    ~conversion() {
        if (open())
            iconv_close(handle_);
    }

    bool open() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

    /// Converts all of `from` and gives the number of bytes that came; 0 if it is no whole character. `cut_short` tells
    /// whether it is the beginning of one.
    std::size_t convert(char * from, std::size_t count, char * to, std::size_t capacity, bool & cut_short) {
        iconv(handle_, nullptr, nullptr, nullptr, nullptr);
        std::size_t left = capacity;
        cut_short = false;
        if (iconv(handle_, &from, &count, &to, &left) != 0) {
            cut_short = errno == EINVAL;
            return 0;
        }
        // Some pages hold a letter back for the accent that may follow.
        iconv(handle_, nullptr, nullptr, &to, &left);
        return capacity - left;
    }

private:
    iconv_t handle_;
};

/// The one unit that `count` bytes mean, or `code_page::undefined`.
char16_t decode(conversion & decoder, char * bytes, std::size_t count, bool & cut_short) {
    char16_t units[8];
    auto const size = decoder.convert(bytes, count, reinterpret_cast<char *>(units), sizeof units, cut_short);
    return size == sizeof(char16_t) ? units[0] : code_page::undefined;
}

/// Makes `code` the form of `unit`, unless that has one which the host prefers.
void add_form(code_page & page, conversion & encoder, char16_t unit, uint16 code) {
    auto & form = page.bytes[unit];
    if (form == 0) {
        form = code;
        return;
    }
    char bytes[8];
    char16_t source = unit;
    bool cut_short;
    auto const size = encoder.convert(reinterpret_cast<char *>(&source), sizeof source, bytes, sizeof bytes, cut_short);
    auto const at = [&](int i) { return static_cast<unsigned char>(bytes[i]); };
    if ((size == 1 && at(0) == code) || (size == 2 && at(0) * 256 + at(1) == code))
        form = code;
}

std::unique_ptr<code_page> build(char const * name) {
    conversion decoder("UTF-16LE", name), encoder(name, "UTF-16LE");
    if (!decoder.open() || !encoder.open())
        return nullptr;
    auto page = std::make_unique<code_page>();
    page->bytes.resize(0x10000);
    for (unsigned first = 0; first < 256; ++first) {
        char byte = static_cast<char>(first);
        page->single[first] = decode(decoder, &byte, 1, page->lead[first]);
        if (page->lead[first])
            page->double_bytes = true;
        else if (page->single[first] != code_page::undefined)
            add_form(*page, encoder, page->single[first], static_cast<uint16>(first));
        if (first < 0x80 && page->single[first] != first)
            page->ascii = false;
    }
    if (page->double_bytes) {
        page->pairs.assign(0x10000, code_page::undefined);
        for (unsigned code = 0; code < 0x10000; ++code) {
            if (!page->lead[code / 256])
                continue;
            char bytes[] = {static_cast<char>(code / 256), static_cast<char>(code % 256)};
            bool cut_short;
            page->pairs[code] = decode(decoder, bytes, 2, cut_short);
            if (page->pairs[code] != code_page::undefined)
                add_form(*page, encoder, page->pairs[code], static_cast<uint16>(code));
        }
    }
    // A byte that means nothing becomes the unit of its own value, and that unit the byte again.
    for (unsigned first = 0; first < 256; ++first) {
        if (page->lead[first] || page->single[first] != code_page::undefined)
            continue;
        page->single[first] = static_cast<char16_t>(first);
        if (page->bytes[first] == 0)
            page->bytes[first] = static_cast<uint16>(first);
    }
    return page;
}

struct slot {
    std::once_flag once;
    std::unique_ptr<code_page> page;
};

} // namespace

std::vector<uint32> installed_pages() {
    std::vector<uint32> pages;
    for (auto const & [number, name] : names)
        if (conversion("UTF-16LE", name).open())
            pages.push_back(number);
    return pages;
}

code_page const * find_page(uint32 number) {
    static slot slots[std::size(names)];
    for (std::size_t i = 0; i < std::size(names); ++i) {
        if (names[i].number == number) {
            std::call_once(slots[i].once, [i] { slots[i].page = build(names[i].name); });
            return slots[i].page.get();
        }
    }
    return nullptr;
}

} // namespace platform::posix
