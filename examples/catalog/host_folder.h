#pragma once

#include "common/host.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace host {

/// What the host says of a name without opening it.
struct status {
    host::kind kind = kind::nothing;
    /// Bytes, and how many of them take room on the disk.
    uint64 size = 0, stored = 0;
    /// In 100 nanoseconds since 1601; 0 if the host does not know when it was made.
    uint64 modified = 0, created = 0;
    /// Which file it is, among all of the host.
    uint64 device = 0, number = 0;
    uint32 names = 1;
    uint32 mode = 0, owner = 0, group = 0;

    bool same_file(status const & other) const { return device == other.device && number == other.number; }
};

/// A name in a folder, as the host spells it.
struct found {
    narrow_string name;
    host::status status;
};

/// A folder that is held: what becomes of its name, or of those above it, does not lead elsewhere. Failures throw a
/// `std::system_error`.
class folder {
public:
    /// The folder at a path of the host. The path may lead through links, its last name is none unless `follow`.
    folder(narrow_string const & path, bool follow);
    folder(folder && other) noexcept;
    folder & operator=(folder const &) = delete;
    ~folder();

    /// The folder of this name in it, which is no link.
    folder inner(narrow_string const & name) const;
    /// Makes a folder that is the user's alone; false if there is anything of this name.
    bool make(narrow_string const & name) const;
    /// Moves a file to a folder of the same file system where nothing has that name.
    void move(narrow_string const & name, folder const & to, narrow_string const & new_name) const;
    /// Removes an empty folder of this name.
    bool remove(narrow_string const & name) const;

    /// Calls `visit` for all that is in it, in the host's order.
    void each(std::function<void(narrow_string const &, host::status const &)> const & visit) const;
    /// The same as a list, sorted by name.
    std::vector<found> list() const;
    /// The names alone, sorted.
    std::vector<narrow_string> names() const;
    host::status status() const;
    host::status look(narrow_string const & name) const;

    /// Whether the folder is the user's own.
    bool own() const;

    /// A path of the host to a name in it, or to itself, that holds for as long as the folder is held.
    narrow_string path(narrow_string const & name) const;
    narrow_string path() const;

    /// What files of the folder hold is on the disk then.
    void sync() const;

private:
    friend class lock;
    explicit folder(std::intptr_t number) : number_(number) {}
    void each_name(std::function<void(narrow_string const &)> const & visit) const;

    std::intptr_t number_; // of the host's descriptor or handle; -1 for none
};

/// Keeps other runs out of a folder for as long as it lives.
class lock {
public:
    explicit lock(folder const & folder);
    lock(lock const &) = delete;
    lock & operator=(lock const &) = delete;
    ~lock();

    /// False if another run has one.
    bool held() const { return number_ != -1; }

private:
    std::intptr_t number_;
};

/// The status of a path; links are not followed.
status status_of(narrow_string const & path);

/// Lets the program hold as many folders as the host allows.
void hold_many_folders();
/// What the program makes from here on is the user's alone, until it is given another mode.
void make_private();

/// The stretches of a file that hold data, in order; what lies between is zeros that take no room.
struct stretch {
    uint64 begin, end;
};
std::vector<stretch> stretches_of(narrow_string const & path, status const & known);

} // namespace host
