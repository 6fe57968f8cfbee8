#include "xml_text.h"

narrow_string xml_text(narrow_string const & text) {
    narrow_string result;
    for (char const c : text) {
        switch (c) {
        case '&': result += "&amp;"; break;
        case '<': result += "&lt;"; break;
        case '>': result += "&gt;"; break;
        case '"': result += "&quot;"; break;
        default: result += c;
        }
    }
    return result;
}
