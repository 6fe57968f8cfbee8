#pragma once

#include "any/path.h"
#include "io/attributes.h"

namespace io {

/// Whether names go to the system in 16 bits, or in their narrow form. Found out while the library loads.
SOCLE_API extern bool wide_calls;

/// Whether a name may hold this unit: none below 32, none of `"*/:<>?\|`, and without `wide_calls` none above 127.
SOCLE_API bool safe_char(char16_t unit);

/// One thing in the file system, by its name: it may be there or not, a file, a folder or neither yet. Nothing is held
/// open. Operations that need a leaf are for items that have a name.
class SOCLE_API item {
public:
    item();
    explicit item(any::path const & path);
    item(item const &);
    item & operator=(item const &);
    virtual ~item();

    /// Always throws an `io::exception`, "cannot be created generically".
    virtual bool create(bool overwrite);
    /// Deletes the file or the empty folder. What a failure of that does with `report`, `file` and `directory` say.
    virtual void unlink(bool report);

    any::path & path() noexcept { return path_; }
    any::path const & path() const noexcept { return path_; }
    io::attributes & attributes() noexcept { return attributes_; }
    io::attributes const & attributes() const noexcept { return attributes_; }
    /// See `io::attributes`. Nothing is applied to an item that does not exist.
    void load_attributes(int type);
    void apply_attributes(int type) const;

    bool exists() const;
    bool directory() const;
    /// Whether the name ends in ".lnk", in any case.
    bool link() const;

    /// Replaces each unsafe unit of each element by "_"; a first element that is a drive stays. True if any was.
    bool normalize();
    /// Looks for a name that is free, if this one exists: "_1" to "_999" and so on before the first full stop of the
    /// leaf, up to `tries`. True if it was changed. Throws an `io::exception`, "cannot resolve name conflict for " and
    /// the path, which is the last one tried then.
    bool make_unique(int tries);
    /// The path stays as it is where the system has no absolute form of it.
    void make_absolute();
    /// Puts the target of a shell link into its place. False, with the path as it was, if the link cannot be read.
    bool resolve_link();

    /// The path is `target` then, also if that fails. Throws an `io::exception`: "cannot move/rename to", if anything
    /// is there already. Side forks stay behind.
    void move(any::path const & target);
    /// The same for another leaf: "cannot rename to".
    void rename(any::string const & leaf);

private:
    bool _move(any::path const & target);

    io::attributes attributes_;
    any::path path_;
};

} // namespace io
