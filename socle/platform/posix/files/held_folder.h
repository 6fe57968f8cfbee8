#pragma once

#include "socle/platform/folders.h"
#include "socle/platform/posix/host/descriptor.h"
#include "socle/platform/posix/paths/resolve.h"

#include <functional>
#include <string_view>
#include <utility>

namespace platform::posix {

/// A folder that is open for reading, and where it lies.
class listed_folder {
public:
    /// Opens the folder at a path; a last element that is a link is only followed if that is asked for.
    system_code open(std::u16string_view path, bool follow_link);
    /// Opens an entry of another one; a link is not followed.
    system_code open(listed_folder const & above, narrow_string const & name);

    int descriptor() const { return file_.get(); }
    /// Puts the folder's descriptor down, or takes it up again.
    void replace(descriptor_guard && file) { file_ = std::move(file); }

    /// An entry, for the calls on resolved paths.
    system_code entry(std::u16string_view name, resolved_path & at) const;

    using found = std::function<void(std::string_view name, uint32 kind)>;
    /// Calls `entry` with the host's name of each entry that is shown, in the host's order, and what GetFileKindW tells
    /// of it.
    system_code list(found const & entry);

private:
    system_code find_volume();
    /// Where it lies now; "" for the host's root.
    host_error find_path(narrow_string & path) const;

    descriptor_guard file_;
    std::shared_ptr<volume const> on_; // also where it has been detached since
    bool at_top_ = false;              // whether it is its volume's own
    bool crosses_ = false;             // whether a volume may begin below it
    bool listed_ = false;              // whether its descriptor has left the start
};

} // namespace platform::posix

struct platform::open_folder::held {
    posix::listed_folder folder;
    held * above = nullptr;
    dev_t device = 0; // of what was put down
    ino_t inode = 0;

    /// Closes the descriptor until `take_up` is called from below.
    void put_down();
    /// Opens the folder above again if it was put down, and is still the one.
    void take_up_above() const;
};
