#include "socle/un/ci_wchar_t_traits.h"

#include <cwctype>

namespace un {

namespace {

char16_t fold(char16_t unit) { return static_cast<char16_t>(std::towlower(unit)); }

} // namespace

bool ci_wchar_t_traits::eq(char16_t a, char16_t b) noexcept { return fold(a) == fold(b); }

bool ci_wchar_t_traits::lt(char16_t a, char16_t b) noexcept { return fold(a) < fold(b); }

int ci_wchar_t_traits::compare(char16_t const * a, char16_t const * b, std::size_t n) noexcept {
    for (std::size_t i = 0; i < n; ++i)
        if (!eq(a[i], b[i]))
            return lt(a[i], b[i]) ? -1 : 1;
    return 0;
}

} // namespace un
