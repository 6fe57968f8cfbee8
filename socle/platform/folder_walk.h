#pragma once

#include "socle/platform/folders.h"

namespace platform {

/// What a walk through a tree does with what it finds, see `walk_tree`.
class tree_visitor {
public:
    virtual ~tree_visitor() = default;

    /// An entry of `folder`, with its bits as of the listing. True to go down into it.
    virtual bool enter(open_folder & folder, WIN32_FIND_DATAW const & entry) = 0;
    /// The entry of `folder` that was entered, behind all that it holds.
    virtual void leave(open_folder & folder, wide_string const & name) = 0;
    /// Asked at the end of each folder: whether to list it again.
    virtual bool again() { return false; }
};

/// Goes through what lies below `top`, in the order of the searches. Each folder is held open in the one above, so the
/// walk stays in the tree whatever becomes of its names, and goes through no link. What was entered and cannot be
/// opened as a folder holds nothing. Depth is limited by memory alone.
void walk_tree(open_folder & top, tree_visitor & visitor);

} // namespace platform
