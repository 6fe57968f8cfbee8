#include "part.h"

#include <socle/io/exception.h>

namespace {

/// The fork of `target` that is like `fork` of `source`.
io::fork & same_fork(io::fork const & fork, io::file & source, io::file & target) {
    if (&fork == &source.data_fork())
        return target.data_fork();
    return &fork == &source.rsrc_fork() ? target.rsrc_fork() : target.info_fork();
}

/// The file whose side fork a file of this name would be, if any.
bool in_the_place_of_a_fork(any::path const & path) {
    wide_string const leaf = path.leaf();
    for (wide_string const ending : {u".rsrc", u".info"}) {
        if (leaf.size() > ending.size() && leaf.ends_with(ending)) {
            any::path owner(path);
            owner.leaf() = any::string(leaf.substr(0, leaf.size() - ending.size()));
            return io::file(owner).exists();
        }
    }
    return false;
}

bool taken(io::file & file) {
    wide_string const leaf = file.path().leaf();
    return leaf == u"." || leaf == u".." || file.exists() || in_the_place_of_a_fork(file.path());
}

/// Where it fails, another failure is already on its way up.
void put_back(any::path const & now, any::path const & before) {
    try {
        io::item(now).move(before);
    } catch (...) {
    }
}

} // namespace

part::part(any::path const & folder) : file_(free_name(folder, any::string(u"macbinary.part"))) {}

part::~part() {
    for (io::fork * const fork : made_)
        fork->unlink(false);
}

void part::make(io::fork & fork) {
    made_.reserve(made_.size() + 1);
    fork.create(false);
    made_.push_back(&fork);
}

void part::close() {
    for (io::fork * const fork : made_)
        fork->close(true);
}

void part::place(io::file & target) {
    struct step {
        any::path from, to;
    };
    std::vector<step> steps;
    for (auto fork = made_.rbegin(); fork != made_.rend(); ++fork)
        steps.push_back({(*fork)->fork_name(), same_fork(**fork, file_, target).fork_name()});
    std::size_t done = 0;
    try {
        for (; done < steps.size(); ++done)
            io::item(steps[done].from).move(steps[done].to);
    } catch (...) {
        while (done-- > 0)
            put_back(steps[done].to, steps[done].from);
        throw;
    }
    made_.clear();
}

io::file free_name(any::path const & folder, any::string const & leaf) {
    io::file result(folder + leaf);
    result.normalize();
    while (taken(result)) {
        // Where only a side fork is in the way, the name itself is free.
        if (!result.make_unique(999))
            result.path().leaf() = any::string(u"_" + wide_string(result.path().leaf()));
    }
    return result;
}
