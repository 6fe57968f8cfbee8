#include "socle/platform/ansi_text.h"

#include "socle/platform/code_pages.h"

namespace platform {

// An empty text is not converted: the calls would take it for a failure.

wide_string from_ansi(std::string_view bytes) {
    if (bytes.empty())
        return {};
    uint32 const page = GetACP();
    uint32 const count = static_cast<uint32>(bytes.size());
    wide_string text(MultiByteToWideChar(page, bytes.data(), count, nullptr, 0), u'\0');
    MultiByteToWideChar(page, bytes.data(), count, text.data(), static_cast<uint32>(text.size()));
    return text;
}

narrow_string to_ansi(std::u16string_view text) {
    if (text.empty())
        return {};
    uint32 const page = GetACP();
    uint32 const count = static_cast<uint32>(text.size());
    narrow_string bytes(WideCharToMultiByte(page, text.data(), count, nullptr, 0, nullptr, nullptr), '\0');
    WideCharToMultiByte(page, text.data(), count, bytes.data(), static_cast<uint32>(bytes.size()), nullptr, nullptr);
    return bytes;
}

} // namespace platform
