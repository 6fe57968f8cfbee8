#include "socle/platform/host_pages.h"

#include <bit>
#include <cerrno>
#include <iconv.h>
#include <string>

namespace platform {

namespace {

std::string host_name(uint32 number) {
    static constexpr struct {
        uint32 number;
        char const * name;
    } names[] = {
        {10000, "MACINTOSH"}, {10007, "MAC-CYRILLIC"}, {10017, "MAC-UK"}, {10029, "MAC-CENTRALEUROPE"},
        {10079, "MAC-IS"},    {20127, "US-ASCII"},     {20866, "KOI8-R"}, {21866, "KOI8-U"},
    };
    constexpr uint32 before_iso = 28590;
    for (auto const & row : names)
        if (row.number == number)
            return row.name;
    return number > before_iso ? "ISO-8859-" + std::to_string(number - before_iso) : "CP" + std::to_string(number);
}

/// From a page to units of this machine's byte order.
class decoder {
public:
    explicit decoder(uint32 number)
        : handle_(iconv_open(std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE",
                             host_name(number).c_str())) {}
    decoder(decoder const &) = delete;
    decoder & operator=(decoder const &) = delete;
    ~decoder() {
        if (open())
            iconv_close(handle_);
    }

    bool open() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

    /// The one unit that `count` bytes mean, or `code_page::undefined`. `cut_short` tells whether they are the
    /// beginning of a character.
    char16_t decode(char * bytes, std::size_t count, bool & cut_short) {
        char16_t units[8];
        char * to = reinterpret_cast<char *>(units);
        std::size_t left = sizeof units;
        iconv(handle_, nullptr, nullptr, nullptr, nullptr);
        bool const converted = iconv(handle_, &bytes, &count, &to, &left) == 0;
        cut_short = !converted && errno == EINVAL;
        // Some pages hold a letter back for the accent that may follow.
        iconv(handle_, nullptr, nullptr, &to, &left);
        return converted && left == sizeof units - sizeof units[0] ? units[0] : code_page::undefined;
    }

private:
    iconv_t handle_;
};

} // namespace

bool has_host_page(uint32 number) { return decoder(number).open(); }

bool read_host_page(uint32 number, code_page & page) {
    decoder host(number);
    if (!host.open())
        return false;
    for (unsigned first = 0; first < 0x100; ++first) {
        char bytes[] = {static_cast<char>(first), 0};
        page.single[first] = host.decode(bytes, 1, page.lead[first]);
        if (!page.lead[first])
            continue;
        page.pairs.resize(0x10000, code_page::undefined);
        for (unsigned second = 0; second < 0x100; ++second) {
            bool cut_short;
            bytes[1] = static_cast<char>(second);
            page.pairs[first * 256 + second] = host.decode(bytes, 2, cut_short);
        }
    }
    return true;
}

} // namespace platform
