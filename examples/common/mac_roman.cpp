#include "mac_roman.h"

#include <socle/any/utf8_coder.h>
#include <socle/un/digits.h>

namespace {

// The upper half of Mac Roman. Zero stands for the two that a reader could not make out: the no-break space and the
// maker's logo.
constexpr char16_t upper_half[] = u"ÄÅÇÉÑÖÜáàâäãåçéèêëíìîïñóòôöõúùûü"
                                  u"†°¢£§•¶ß®©™´¨≠ÆØ∞±≤≥¥µ∂∑∏π∫ªºΩæø"
                                  u"¿¡¬√ƒ≈∆«»…\0ÀÃÕŒœ–—“”‘’÷◊ÿŸ⁄€‹›ﬁﬂ"
                                  u"‡·‚„‰ÂÊÁËÈÍÎÏÌÓÔ\0ÒÚÛÙıˆ˜¯˘˙˚¸˝˛ˇ";
static_assert(sizeof upper_half / sizeof upper_half[0] == 128 + 1);

/// The character as Unicode, 0 if it is to be escaped.
char16_t unit(unsigned char byte) {
    if (byte >= 0x80)
        return upper_half[byte - 0x80];
    return byte < ' ' || byte == 0x7F ? u'\0' : char16_t(byte);
}

} // namespace

narrow_string readable(narrow_string const & text) {
    narrow_string result;
    for (char const c : text) {
        auto const u = unit(static_cast<unsigned char>(c));
        if (c == '\\')
            result += "\\\\";
        else
            result += u != 0 ? any::utf8_coder::encode(wide_string(1, u)) : "\\x" + un::to_hex(c);
    }
    return result;
}
