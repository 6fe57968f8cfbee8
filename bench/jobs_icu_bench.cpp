#include "bench/jobs.h"

#include <unicode/ucnv.h>

#include <vector>

namespace {

uint64 convert() {
    bench::host_file const in(bench::page_file(), O_RDONLY), out(bench::utf8_file(), O_WRONLY | O_CREAT | O_TRUNC);
    UErrorCode error = U_ZERO_ERROR;
    UConverter * const page = ucnv_open("windows-932", &error);
    UConverter * const utf8 = ucnv_open("UTF-8", &error);
    std::vector<char> bytes(64 << 10), text(256 << 10);
    std::vector<UChar> units(64 << 10);
    UChar *begin = units.data(), *end = begin;
    for (bool is_first = true, is_last = false; !is_last; is_first = false) {
        ssize_t const got = read(in, bytes.data(), bytes.size());
        is_last = got == 0;
        char const * from = bytes.data();
        char * to = text.data();
        ucnv_convertEx(utf8, page, &to, to + text.size(), &from, from + got, units.data(), &begin, &end,
                       units.data() + units.size(), is_first, is_last, &error);
        benchmark::DoNotOptimize(write(out, text.data(), static_cast<std::size_t>(to - text.data())));
    }
    ucnv_close(page);
    ucnv_close(utf8);
    return 0;
}

[[maybe_unused]] bool const registered = [] {
    add(bench::conversion_job(), "ICU", convert);
    return true;
}();

} // namespace
