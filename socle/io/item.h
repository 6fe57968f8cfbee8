#pragma once

#include "socle/any/path.h"
#include "socle/io/attributes.h"

#include <list>

namespace io {

class directory;

/// Whether names go to the system in 16 bits, or in their narrow form. Determined while the library loads.
SOCLE_API extern bool wide_calls;

/// Whether a name may hold this unit: none below 32, none of `"*/:<>?\|`, and without `wide_calls` none above 127.
SOCLE_API bool safe_char(char16_t unit);

/// One thing in the file system, by its name: a file, a folder, or nothing yet. It holds nothing open. Operations that
/// need a leaf are for items that have a name.
class SOCLE_API item {
public:
    struct summary;

    item();
    /// Refers to `path`; does not access the file system.
    explicit item(any::path const & path);
    item(item const &);
    item & operator=(item const &);
    /// Deletes what a temporary item names, and fails silently. Its forks are not closed before.
    virtual ~item();

    /// Always throws an `io::exception`, "cannot be created generically".
    virtual bool create(bool overwrite);
    /// Deletes the file or the empty folder. What a failure of that does with `report`, `file` and `directory` say.
    virtual void unlink(bool report);

    /// The path as it was given.
    any::path & path() noexcept { return path_; }
    any::path const & path() const noexcept { return path_; }
    /// The attributes that `load_attributes` has read or the caller has set.
    io::attributes & attributes() noexcept { return attributes_; }
    io::attributes const & attributes() const noexcept { return attributes_; }
    /// Reads the attributes, by `io::attributes::load`.
    void load_attributes(int type);
    /// Applies the attributes, by `io::attributes::apply`; does nothing if the item does not exist.
    void apply_attributes(int type) const;

    /// Set by `create_temp`. A copy is temporary too, so that the first of them to go deletes the item.
    bool temporary() const noexcept { return temporary_; }

    /// Whether there is anything at the path; a dangling link counts.
    bool exists() const;
    /// Whether a folder is there, or a link to one.
    bool directory() const;
    /// Whether the name ends in ".lnk", in any case.
    bool link() const;

    /// Replaces each unsafe unit of each element by "_"; a first element that is a drive stays. True if any was.
    bool normalize();
    /// Looks for a name that is free, if this one exists: "_1" to "_999" and so on before the first full stop of the
    /// leaf, up to `tries`. True if it was changed. Throws an `io::exception`, "cannot resolve name conflict for " and
    /// the path, which is the last one tried then.
    bool make_unique(int tries);
    /// Makes the path absolute. It stays as it is where the system has no absolute form of it.
    void make_absolute();
    /// Replaces the path of a shell link by its target. False, with the path as it was, if the link cannot be read.
    bool resolve_link();

    /// Moves what is there to `target`, which becomes the path, also if that fails. Throws an `io::exception`, "cannot
    /// move/rename to", also if anything is there already. Sidecars stay behind.
    void move(any::path const & target);
    /// Moves to another leaf in the same folder, in the same way: "cannot rename to".
    void rename(any::string const & leaf);
    /// Moves to another folder under the same leaf, in the same way: "cannot move to".
    void move(io::directory const & folder);

    /// The length of the data fork: 0 for a folder, all ones for what cannot be opened or is no file.
    uint64 size();
    /// The parent folder, with the same separators; an item without a name has a parent without one. Needs
    /// `socle/io/directory.h`.
    io::directory parent() const;

    /// Creates this item in `folder` under a name made from the clock, and makes it temporary. After 100 attempts that
    /// threw an `io::exception` it fails silently.
    void create_temp(io::directory const & folder);
    /// Creates all missing folders above, from the top down. Throws as `directory::create` does.
    void create_parents();
    /// `create_parents`, then `create`, whose result it returns.
    bool create_with_parents(bool overwrite);

    /// Adds this item and all below it to `sum`. Sidecars do not count beside their file, and a link to a folder is
    /// not followed.
    void scan(summary & sum);
    /// The sum of one item. It does not use the item that it is called on.
    summary scan(item & other);
    /// The sum of several items.
    static summary scan(std::list<item *> items);

protected:
    /// A path in `folder` whose leaf is the clock's count in hexadecimal digits.
    any::path temp_name(io::directory const & folder);

private:
    bool _move(any::path const & target);

    io::attributes attributes_;
    any::path path_;
    bool temporary_ = false;
};

/// The result of a scan.
struct item::summary {
    /// Folders and files together.
    uint64 items = 0;
    /// Folders alone.
    uint64 directories = 0;
    /// Files alone.
    uint64 files = 0;
    /// Items that are not there.
    uint64 missing = 0;
    /// The sizes of all files that could be had.
    uint64 bytes = 0;
};

} // namespace io
