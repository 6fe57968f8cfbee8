#include "socle/platform/folder_walk.h"

#include <deque>

namespace platform {

namespace {

/// A folder of the walk, and how far its search has come.
class level {
public:
    explicit level(open_folder & top) : folder_(&top) {}
    level(open_folder & above, wide_string const & name) : folder_(&own_) { own_.open(above, name); }
    level(level const &) = delete;
    level & operator=(level const &) = delete;

    open_folder & folder() { return *folder_; }
    WIN32_FIND_DATAW const & found() const { return found_; }

    bool next() {
        if (search_ != nullptr)
            return FindNextFileW(search_.get(), found_);
        search_.reset(folder_->is_open() ? FindFirstFileW(*folder_, found_) : nullptr);
        return search_ != nullptr;
    }

    void restart() { search_.reset(); }

private:
    open_folder own_;
    open_folder * folder_;
    search_handle search_;
    WIN32_FIND_DATAW found_;
};

/// From the top to where the walk is. Each folder goes before the one above, on which it relies.
struct level_stack {
    std::deque<level> levels;
    ~level_stack() {
        while (!levels.empty())
            levels.pop_back();
    }
};

} // namespace

void walk_tree(open_folder & top, tree_visitor & visitor) {
    level_stack stack;
    auto & levels = stack.levels;
    levels.emplace_back(top);
    for (;;) {
        level & here = levels.back();
        if (here.next()) {
            if (visitor.enter(here.folder(), here.found()))
                levels.emplace_back(here.folder(), here.found().cFileName);
        } else if (visitor.again()) {
            here.restart();
        } else if (levels.size() == 1) {
            return;
        } else {
            levels.pop_back();
            visitor.leave(levels.back().folder(), levels.back().found().cFileName);
        }
    }
}

} // namespace platform
