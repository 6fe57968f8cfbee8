/// Finder information beside a file: the block of 60 bytes in a named stream, and the AppleDouble sidecar, read and
/// written where there are any bytes.

#include "fuzz/support/apple_double.h"
#include "fuzz/support/feed.h"
#include "socle/nio/apple_double_internal.h"
#include "socle/nio/attributes.h"
#include "socle/nio/file.h"
#include "socle/nio/filesystem_exception.h"
#include "socle/nio/fork_names.h"
#include "tests/support/ntfs_folder.h"

#include <array>

namespace {

using fuzz::check;
using info_bytes = std::array<unsigned char, 32>;

constexpr std::string_view block_head("AFP\0\0\0\1\0\0\0\0\0\0\0\0\0", 16);
constexpr std::size_t block_size = 60;

std::string bytes_of(info_bytes const & info) { return {info.begin(), info.end()}; }

info_bytes loaded(wide_string const & path) {
    nio::item item(path);
    nio::attributes attributes;
    attributes.finder_info.fill(0xEE);
    attributes.load(item);
    return attributes.finder_info;
}

void apply(wide_string const & path, info_bytes const & info, bool allow_ntfs) {
    nio::item item(path);
    nio::attributes attributes;
    attributes.finder_info = info;
    attributes.apply(item, true, allow_ntfs);
}

std::string read_stream(wide_string const & path) {
    nio::file stream(path, nio::file::mode_read);
    std::string bytes(static_cast<std::size_t>(stream.size()), '\0');
    check(stream.read(bytes.data(), static_cast<uint32>(bytes.size())) == bytes.size());
    return bytes;
}

/// The block, which has to be whole and to begin as it should.
void block(std::string bytes, info_bytes const & info) {
    wide_string const path = u"N:\\f";
    {
        nio::file file(path, nio::file::mode_new);
        nio::file fork(path, nio::file::mode_closed);
        fork.create_rsrc(true, false);
        nio::file stream(nio::ntfs_info_name(path), nio::file::mode_new);
        stream.write(bytes.data(), static_cast<uint32>(bytes.size()));
    }
    info_bytes expected;
    expected.fill(0xEE);
    if (bytes.size() >= block_size && bytes.starts_with(block_head.substr(0, 8)))
        std::copy_n(bytes.begin() + 16, expected.size(), expected.begin());
    check(loaded(path) == expected);

    apply(path, info, true);
    check(loaded(path) == info);
    bytes.resize(std::max(bytes.size(), block_size));
    bytes.replace(0, block_size, std::string(block_head) + bytes_of(info) + std::string(12, '\0'));
    check(read_stream(nio::ntfs_info_name(path)) == bytes);
}

void sidecar(scratch const & folder, std::string bytes, info_bytes const & info) {
    folder.write("g", "data");
    folder.write("._g", bytes);
    uint32 offset = 0, room = 0;
    bool const found = fuzz::find_entry(bytes, nio::apple_double::finder_info_id, offset, room);
    info_bytes expected;
    expected.fill(0xEE);
    if (found && bytes.size() >= expected.size() && offset <= bytes.size() - expected.size())
        std::copy_n(bytes.begin() + offset, expected.size(), expected.begin());
    check(loaded(folder.path("g")) == expected);

    // Far behind the end it would make a large file.
    if (found && offset > 100000)
        return;
    bool const fits = found && room >= info.size();
    try {
        apply(folder.path("g"), info, false);
        check(fits || bytes.empty());
    } catch (nio::filesystem_exception const &) {
        check(!fits && !bytes.empty() && folder.read("._g") == bytes);
        return;
    }
    if (bytes.empty()) {
        auto const head = nio::apple_double::head({});
        bytes.assign(head.begin(), head.end());
        offset = nio::apple_double::finder_info_offset;
    }
    bytes.resize(std::max<std::size_t>(bytes.size(), offset + info.size()));
    bytes.replace(offset, info.size(), bytes_of(info));
    check(folder.read("._g") == bytes);
    check(loaded(folder.path("g")) == info);
}

} // namespace

void fuzz::run(std::string_view input) {
    feed in(input);
    info_bytes info{};
    auto const given = in.bytes(in.byte() % 33u);
    std::copy(given.begin(), given.end(), info.begin());
    std::string const bytes(in.rest());
    static ntfs_folder const folder; // one serves all inputs, each of which leaves it empty
    if (folder.attached())
        block(bytes, info);
    sidecar(folder, bytes, info);
    if (folder.attached())
        nio::unlink(u"N:\\f", true);
    nio::unlink(folder.path("g"), true);
}
