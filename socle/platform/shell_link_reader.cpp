#include "socle/platform/shell_link_reader.h"

#include "socle/basic/internal/byte_order.h"

#include <cstddef>
#include <optional>

namespace platform {

namespace {

// The header's flags.
constexpr uint32 has_id_list = 0x1;
constexpr uint32 has_link_info = 0x2;
constexpr uint32 first_string = 0x4; // name, relative path, working directory, arguments, icon: a bit each
constexpr uint32 last_string = 0x40;
constexpr uint32 is_unicode = 0x80;
constexpr uint32 ignore_link_info = 0x100;

// The flags of the link info.
constexpr uint32 has_local_path = 0x1;
constexpr uint32 has_network_path = 0x2;

/// Where the Unicode offsets of a link info stand, if its own header is long enough to hold them.
constexpr uint32 long_info_header = 0x24;
constexpr uint32 short_info_header = 0x1C;

constexpr std::size_t longest_target = 4096;

/// Part of a link, with little-endian numbers and texts at offsets. What does not lie in it is nothing.
class block {
public:
    explicit block(std::string_view bytes) : bytes_(bytes) {}

    std::optional<uint32> number(std::size_t at, std::size_t width = 4) const {
        if (at > bytes_.size() || bytes_.size() - at < width)
            return {};
        char const * const bytes = bytes_.data() + at;
        return width == 2 ? basic::load<uint16>(bytes, false) : basic::load<uint32>(bytes, false);
    }

    std::optional<block> part(std::size_t at, std::size_t size) const {
        if (at > bytes_.size() || bytes_.size() - at < size)
            return {};
        return block(bytes_.substr(at, size));
    }

    /// The part at `at` that begins with its own size, in 4 bytes; `least` is the smallest it can have.
    std::optional<block> sized_part(std::size_t at, uint32 least) const {
        std::optional<uint32> const size = number(at);
        return size && *size >= least ? part(at, *size) : std::nullopt;
    }

    /// The bytes up to a zero byte.
    std::optional<std::string_view> text(std::size_t at) const {
        std::size_t const end = at < bytes_.size() ? bytes_.find('\0', at) : std::string_view::npos;
        if (end == std::string_view::npos || end - at > longest_target)
            return {};
        return bytes_.substr(at, end - at);
    }

    /// The text of 16-bit units up to a zero unit.
    std::optional<wide_string> wide_text(std::size_t at) const {
        wide_string text;
        for (;; at += 2) {
            std::optional<uint32> const unit = number(at, 2);
            if (!unit || text.size() > longest_target)
                return {};
            if (*unit == 0)
                return text;
            text += static_cast<char16_t>(*unit);
        }
    }

    std::string_view bytes() const { return bytes_; }

private:
    std::string_view bytes_;
};

/// Reads the link info, in which each text is in the ANSI page and may be there in Unicode as well.
class info_reader {
public:
    info_reader(block const & info, ansi_decoder * from_ansi) : info_(info), from_ansi_(from_ansi) {}

    std::optional<wide_string> path() const {
        uint32 const header = info_.number(4).value_or(0);
        uint32 const flags = info_.number(8).value_or(0);
        bool const wide = header >= long_info_header;
        if (header < short_info_header || !info_.part(0, header))
            return {};
        std::optional<wide_string> path = (flags & has_local_path) != 0     ? local_path(wide)
                                          : (flags & has_network_path) != 0 ? network_path()
                                                                            : std::nullopt;
        std::optional<wide_string> const suffix = text(info_, 24, wide ? 32 : 0);
        if (!path || !suffix)
            return {};
        if (!suffix->empty() && !path->ends_with(u'\\'))
            *path += u'\\';
        return *path + *suffix;
    }

private:
    std::optional<wide_string> local_path(bool wide) const {
        constexpr uint32 least_volume_id = 0x10;
        bool const has_volume = info_.sized_part(*info_.number(12), least_volume_id).has_value();
        return has_volume ? text(info_, 16, wide ? 28 : 0) : std::nullopt;
    }

    std::optional<wide_string> network_path() const {
        constexpr uint32 short_network_header = 0x14;
        std::optional<block> const network = info_.sized_part(*info_.number(20), short_network_header);
        if (!network)
            return {};
        return text(*network, 8, *network->number(8) > short_network_header ? 20 : 0);
    }

    /// The text whose offset in `in` stands at `wide`, if that is not 0 and there is one, else at `ansi`.
    std::optional<wide_string> text(block const & in, std::size_t ansi, std::size_t wide) const {
        uint32 const wide_offset = wide != 0 ? in.number(wide).value_or(0) : 0;
        if (wide_offset != 0)
            return in.wide_text(wide_offset);
        std::optional<uint32> const offset = in.number(ansi);
        std::optional<std::string_view> const bytes = offset ? in.text(*offset) : std::nullopt;
        return bytes ? std::optional(from_ansi_(*bytes)) : std::nullopt;
    }

    block info_;
    ansi_decoder * from_ansi_;
};

/// Where the strings behind the link info end; nothing if one does not fit.
std::optional<std::size_t> skip_strings(block const & link, uint32 flags, std::size_t at) {
    std::size_t const unit = (flags & is_unicode) != 0 ? 2 : 1;
    for (uint32 string = first_string; string <= last_string; string <<= 1) {
        if ((flags & string) == 0)
            continue;
        std::optional<uint32> const length = link.number(at, 2);
        if (!length || !link.part(at + 2, *length * unit))
            return {};
        at += 2 + *length * unit;
    }
    return at;
}

/// Whether the blocks from `at` on come to an end, which is a size below 4.
bool ends_with_blocks(block const & link, std::size_t at) {
    for (;;) {
        std::optional<uint32> const size = link.number(at);
        if (!size || *size < 4)
            return size.has_value();
        if (!link.part(at, *size))
            return false;
        at += *size;
    }
}

} // namespace

bool read_shell_link(std::string_view bytes, ansi_decoder * from_ansi, wide_string & target) {
    constexpr std::string_view start("\x4c\0\0\0\x01\x14\x02\0\0\0\0\0\xc0\0\0\0\0\0\0\x46", 20);
    constexpr std::size_t header_size = 0x4c;
    block const link(bytes);
    if (!bytes.starts_with(start) || bytes.size() < header_size)
        return false;
    uint32 const flags = *link.number(20);
    std::size_t at = header_size;
    if ((flags & has_id_list) != 0) {
        std::optional<uint32> const size = link.number(at, 2);
        if (!size)
            return false;
        at += 2 + *size;
    }
    std::optional<wide_string> path;
    if ((flags & has_link_info) != 0) {
        std::optional<block> const info = link.sized_part(at, short_info_header);
        path = info ? info_reader(*info, from_ansi).path() : std::nullopt;
        at += info ? info->bytes().size() : 0;
    }
    std::optional<std::size_t> const blocks = skip_strings(link, flags, at);
    if (!path || path->empty() || path->size() > longest_target || (flags & ignore_link_info) != 0 || !blocks
        || !ends_with_blocks(link, *blocks))
        return false;
    target = *path;
    return true;
}

} // namespace platform
