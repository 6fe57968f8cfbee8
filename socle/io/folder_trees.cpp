#include "socle/io/folder_trees_internal.h"

#include "socle/io/exception.h"
#include "socle/io/item.h"
#include "socle/io/system_path_internal.h"
#include "socle/platform/ansi_text.h"
#include "socle/platform/folder_walk.h"

#include <utility>
#include <vector>

namespace io {

namespace {

/// A walk that sees what an iterator shows.
class shown_tree : public platform::tree_visitor {
public:
    explicit shown_tree(any::path const & top) : top_(top) {}

    bool enter(platform::open_folder & folder, platform::WIN32_FIND_DATAW const & entry) override {
        if (!comes_back(entry.cFileName) || is_hidden(entry.cFileName, [&](wide_string const & name) {
                return name.empty() ? !top_.empty() : has(folder, name);
            }))
            return false;
        bool const is_folder = (entry.dwFileAttributes & platform::FILE_ATTRIBUTE_DIRECTORY) != 0;
        bool const is_link = (entry.dwFileAttributes & platform::FILE_ATTRIBUTE_REPARSE_POINT) != 0;
        show(folder, entry.cFileName, entry.dwFileAttributes);
        return is_folder && !is_link;
    }

protected:
    /// An entry that shows, before all that it holds.
    virtual void show(platform::open_folder & folder, wide_string const & name, uint32 kind) = 0;

    static bool has(platform::open_folder & folder, wide_string const & name) {
        return platform::GetFileKindW(folder, name) != platform::INVALID_FILE_ATTRIBUTES;
    }

    any::path const & top() const { return top_; }

private:
    /// Narrow calls do not find the other names.
    static bool comes_back(wide_string const & name) {
        if (wide_calls)
            return true;
        return platform::from_ansi(platform::to_ansi(name)) == name;
    }

    any::path const & top_;
};

class emptying : public shown_tree {
public:
    emptying(any::path const & top, bool report) : shown_tree(top), report_(report) {}

private:
    struct level {
        wide_string name;     // of the folder that was entered
        bool removed = false; // whether something in it was, since it was last listed
    };

    void show(platform::open_folder & folder, wide_string const & name, uint32 kind) override {
        if ((kind & platform::FILE_ATTRIBUTE_DIRECTORY) == 0)
            note(platform::DeleteFileW(folder, name));
        else if ((kind & platform::FILE_ATTRIBUTE_REPARSE_POINT) != 0)
            remove_folder(folder, name);
        else
            levels_.push_back({name});
    }

    void leave(platform::open_folder & folder, wide_string const & name) override {
        levels_.pop_back();
        remove_folder(folder, name);
    }

    /// As long as that helps: a sidecar is hidden until its file has gone.
    bool again() override { return std::exchange(levels_.back().removed, false); }

    void remove_folder(platform::open_folder & folder, wide_string const & name) {
        bool const removed = platform::RemoveDirectoryW(folder, name);
        note(removed);
        if (removed || !report_)
            return;
        any::path path(top());
        for (std::size_t i = 1; i < levels_.size(); ++i)
            path.add_leaf(any::string(levels_[i].name));
        path.add_leaf(any::string(name));
        throw exception("cannot delete " + path.full_string().str(true), "io::directory", 0);
    }

    void note(bool removed) { levels_.back().removed = levels_.back().removed || removed; }

    bool report_;
    std::vector<level> levels_ = std::vector<level>(1);
};

class counting : public shown_tree {
public:
    counting(any::path const & top, item::summary & sum) : shown_tree(top), sum_(sum) {}

private:
    void show(platform::open_folder & folder, wide_string const & name, uint32 kind) override {
        if ((kind & platform::FILE_ATTRIBUTE_DIRECTORY) != 0) {
            ++sum_.items;
            ++sum_.directories;
            return;
        }
        uint64 bytes = 0;
        if ((kind & platform::FILE_ATTRIBUTE_DEVICE) == 0 && !size_of(folder, name, bytes) && !has(folder, name)) {
            ++sum_.missing;
            return;
        }
        ++sum_.items;
        ++sum_.files;
        sum_.bytes += bytes;
    }

    void leave(platform::open_folder &, wide_string const &) override {}

    /// As the size of an item is had: by opening it, so that what may not be read has none.
    static bool size_of(platform::open_folder & folder, wide_string const & name, uint64 & bytes) {
        int const file =
            platform::CreateFileW(folder, name, platform::GENERIC_READ,
                                  platform::FILE_SHARE_READ | platform::FILE_SHARE_WRITE, platform::OPEN_EXISTING, 0);
        platform::handle_guard const guard(file);
        return file != platform::INVALID_HANDLE_VALUE && platform::GetFileSize(file, bytes);
    }

    item::summary & sum_;
};

} // namespace

void unlink_children_of(any::path const & folder, bool report) {
    platform::open_folder top;
    emptying visitor(folder, report);
    if (top.open(system_name(folder)))
        walk_tree(top, visitor);
}

void scan_children_of(platform::open_folder & folder, any::path const & path, item::summary & sum) {
    counting visitor(path, sum);
    walk_tree(folder, visitor);
}

} // namespace io
