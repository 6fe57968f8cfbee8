#pragma once

#include "socle/nio/item.h"

#include <cstddef>
#include <iterator>
#include <memory>

namespace nio {

class attributes;

/// A directory on disk, named by its path.
class SOCLE_API directory : public item {
public:
    class iterator;

    directory() = default;
    /// Refers to `path`, or to the path of an item; does not access the file system.
    explicit directory(wide_string const & path);
    explicit directory(nio::item const & from);

    /// Creates the directory and any missing parents. True if that worked only under the normalized name, which then is
    /// the path. Throws `nio::filesystem_exception`, "cannot create", if that fails too, with the path as it was.
    ///
    /// Returns false and does nothing for an empty path and for one that exists. Also returns false where nothing could
    /// be created under a name that is already normal.
    bool create();
    /// Creates a directory in `parent` under a name made from the clock.
    void create_temp(wide_string const & parent);

    /// Removes the directory if it is empty; a link is removed itself. `must_succeed` lets it throw
    /// `nio::filesystem_exception`, "cannot delete".
    void unlink(bool must_succeed);
    /// Removes what the directory contains, files with their sidecars. With `must_succeed` it stops at the first
    /// failure, by "cannot delete", else it goes on past what cannot be removed. Nothing is removed through a link, not
    /// even through one in this place.
    void unlink_children(bool must_succeed);
    /// `unlink_children`, then `unlink`.
    void unlink_with_children(bool must_succeed);

    /// The first entry of a new walk.
    iterator begin() const;
    /// The end of every walk.
    iterator end() const;
};

/// Goes through the entries of a directory in the order of the system. "." and "..", and sidecars, names that begin
/// with "._", do not show. A directory that cannot be searched has no entries, nor has an empty path.
///
/// A copy shows the same entry, but goes on from the start of the directory.
class SOCLE_API directory::iterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = wide_string;
    using difference_type = std::ptrdiff_t;
    using pointer = wide_string const *;
    using reference = wide_string const &;

    /// The end of any directory.
    iterator();
    /// The first entry of the directory.
    explicit iterator(nio::item const & from);
    iterator(iterator const & other);
    /// Goes on in the same search; `other` is at the end then.
    iterator(iterator && other);
    iterator & operator=(iterator const & other);
    iterator & operator=(iterator && other) noexcept;
    ~iterator();

    /// @{
    /// The path of the entry: the directory's, and the entry's name.
    wide_string const & operator*() const { return current_; }
    wide_string const * operator->() const { return &current_; }
    /// @}

    /// @{
    /// What the entry was when the directory was listed, which costs no further question: a directory or a link to one;
    /// a link. Not for a walk that has ended.
    bool is_directory() const;
    bool is_link() const;
    /// @}

    /// Reads the attributes of the entry, as `attributes::load` does with its path, but from the directory, which is
    /// opened for the first entry and held until the walk ends. The host is asked twice for what it knows and once for
    /// the sidecar, whatever the depth; a path costs one or two questions more, and each goes through all of it.
    void load(attributes & into) const;

    /// Goes to the next entry that shows.
    iterator & operator++();
    /// Goes to the next entry, and returns that one.
    iterator operator++(int);

    /// Whether both stand in the same search, or have both ended.
    bool operator==(iterator const & other) const;

private:
    struct search;

    void _first(wide_string const & path);
    void _next();
    void _succ();
    bool _trivial() const;
    void _close();
    void show();

    wide_string directory_;
    std::unique_ptr<search> search_;
    wide_string current_;
};

} // namespace nio
