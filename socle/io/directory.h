#pragma once

#include "socle/io/item.h"

#include <iterator>
#include <memory>

namespace io {

/// A folder. Walking it shows one entry for each file: the sidecars of its forks are hidden while it is there.
class SOCLE_API directory : public item {
public:
    class iterator;

    /// The process's working directory, by a path without elements.
    static directory current;
    /// The environment's "TEMP", else its "TMP", else the working directory.
    static directory temp();

    directory();
    /// Refers to `path`; does not access the file system.
    explicit directory(any::path const & path);
    directory(directory const &);
    /// The same path and attributes.
    explicit directory(item const & other);
    directory & operator=(directory const &);
    ~directory() override;

    /// Always 0.
    uint64 size() const;

    /// Creates the folder, unless it has no name or exists. True if that worked only under a normalized and unique
    /// name, which then is the path. Throws an `io::exception`, "cannot create", with the path as it was. `overwrite`
    /// is ignored, in the next two operations as well.
    bool create(bool overwrite) override;
    using item::create_parents;
    /// Creates the parent folder if that is missing, but not its parents. True if that changed a name.
    bool create_parents(bool overwrite);
    /// `create_parents`, then `create`. True if either changed a name.
    bool create_with_parents(bool overwrite);

    /// Removes the folder itself, which has to be empty; a link is removed itself. With `report` it throws an
    /// `io::exception`, "cannot delete " and the path.
    void unlink(bool report) override;
    /// Deletes what is in it, as far as that can be deleted; `report` goes to the `unlink` of each. Nothing is deleted
    /// through a link, not even if the folder itself is one.
    void unlink_children(bool report);
    /// `unlink_children`, then `unlink`.
    void unlink_with_children(bool report);

    /// The first entry of a new walk.
    iterator begin() const;
    /// The end of every walk.
    iterator end() const;
};

/// Goes through a folder, which must outlive it, in the order of the system, once. A folder that cannot be searched has
/// no entries.
///
/// "." and ".." do not show; a name in ".rsrc" does not beside the file that it belongs to, and one in ".info" beside
/// the file or its ".rsrc". One named just ".rsrc" or ".info" counts as beside the folder itself: it shows in a walk of
/// the working directory by an empty path alone, and `unlink_children` leaves it. A copy shows the same entry, but goes
/// on from the start of the folder.
class SOCLE_API directory::iterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = item;
    using difference_type = int;
    using pointer = item *;
    using reference = item &;

    /// The end of any folder.
    iterator();
    /// The first entry of `folder`.
    explicit iterator(directory const & folder);
    iterator(iterator const & other);
    /// Goes on in the same search; `other` is at the end then.
    iterator(iterator && other);
    iterator & operator=(iterator const & other);
    iterator & operator=(iterator && other) noexcept;
    ~iterator();

    /// @{
    /// The entry, without its attributes.
    item & operator*() const;
    item * operator->() const;
    /// @}

    /// @{
    /// What the entry was when the folder was listed, which costs no further question: a folder or a link to one; a
    /// link. Not for a walk that has ended.
    bool is_directory() const;
    bool is_link() const;
    /// @}

    /// Reads the attributes of the entry, as its own `load_attributes` does, but from the folder, which is opened for
    /// the first entry and held until the walk ends. The host is asked twice, and by types 1 and 3 three times more for
    /// sidecars, whatever the depth.
    void load_attributes(int type) const;

    /// Goes to the next entry that shows.
    iterator & operator++();
    /// Goes to the next entry, and returns that one.
    iterator operator++(int);

    /// Whether both stand in the same search, or have both ended.
    bool operator==(iterator const & other) const;

private:
    struct search;

    void first(directory const & folder);
    void next();
    void succ();
    bool trivial() const;
    platform::open_folder const * folder() const;
    void close();
    void skip_hidden();

    directory const * dir_;
    std::unique_ptr<search> search_;
};

} // namespace io
