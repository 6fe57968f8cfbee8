#include "socle/nio/fork_names.h"

#include "socle/nio/found_at_load_internal.h"
#include "socle/nio/item.h"
#include "socle/nio/path.h"
#include "socle/platform/errors.h"
#include "socle/platform/paths.h"

#include <cwctype>
#include <string_view>

namespace nio {

namespace {

constexpr std::u16string_view rsrc_stream = u":AFP_Resource";
constexpr std::u16string_view info_stream = u":AFP_AfpInfo";

/// The part of an absolute path that names its volume, with a separator at the end; empty if there is none.
wide_string volume_root(wide_string const & path) {
    auto const is_letter = [](char16_t unit) { return std::iswalpha(unit) != 0; };
    if (path.size() >= 3 && is_letter(path[0]) && path[1] == u':' && path[2] == u'\\')
        return path.substr(0, 3);
    if (!path.starts_with(u"\\\\"))
        return {};
    path_fragments fragments(path, u'\\');
    auto host = fragments.begin();
    ++host;
    ++host;
    auto share = host;
    ++share;
    return u"\\\\" + *host + u'\\' + (share == fragments.end() ? wide_string() : *share) + u'\\';
}

wide_string fork_name(wide_string const & path, wide_string const & stream_name, bool must_exist, bool allow_ntfs) {
    // A stream that may be there, but out of reach, is not looked for elsewhere: whoever opens it hears of that.
    bool const in_stream =
        allow_ntfs && is_ntfs(path) && (!must_exist || exists(ntfs_rsrc_name(path)) || !platform::nothing_is_there());
    return in_stream ? stream_name : ufs_name(path);
}

} // namespace

wide_string ufs_name(wide_string const & path) {
    std::size_t const leaf = path.find_last_of(u"\\/") + 1;
    wide_string name;
    name.reserve(path.size() + 2);
    return name.append(path, 0, leaf).append(u"._").append(path, leaf);
}

wide_string ntfs_rsrc_name(wide_string const & path) { return wide_string(path).append(rsrc_stream); }

wide_string ntfs_info_name(wide_string const & path) { return wide_string(path).append(info_stream); }

bool is_ntfs_rsrc_name(wide_string const & path) { return path.ends_with(rsrc_stream); }

bool is_ntfs_info_name(wide_string const & path) { return path.ends_with(info_stream); }

bool is_ntfs(wide_string const & path) {
    if (!platform_is_nt)
        return false;
    wide_string const root = volume_root(make_absolute(path));
    wide_string file_system;
    return !root.empty() && platform::GetVolumeInformationW(root, file_system) && file_system == u"NTFS";
}

bool exists_ufs(wide_string const & path) { return exists(ufs_name(path)); }

bool exists_ntfs(wide_string const & path) {
    platform::held_paths const hold;
    if (!is_ntfs(path))
        return false;
    return exists(ntfs_rsrc_name(path));
}

bool exists_rsrc(wide_string const & path) {
    platform::held_paths const hold;
    return exists(rsrc_name(path, true, true));
}

wide_string rsrc_name(wide_string const & path, bool must_exist, bool allow_ntfs) {
    return fork_name(path, ntfs_rsrc_name(path), must_exist, allow_ntfs);
}

wide_string info_name(wide_string const & path, bool must_exist, bool allow_ntfs) {
    return fork_name(path, ntfs_info_name(path), must_exist, allow_ntfs);
}

} // namespace nio
