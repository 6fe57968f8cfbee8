#include "packing.h"

#include "archive.h"
#include "copying.h"
#include "part.h"

#include "common/host.h"

#include <socle/basic/codes.h>
#include <socle/io/exception.h>
#include <socle/io/fork_input.h>
#include <socle/io/fork_output.h>
#include <socle/io/open_fork.h>
#include <socle/nio/encoding.h>
#include <socle/platform/host.h>

#include <filesystem>

namespace {

any::path library_path(narrow_string const & host) { return {platform::from_host(host), true}; }

/// The path from the root on, so that no name that is added to it can be taken for a drive.
any::path absolute_path(narrow_string const & typed) {
    return library_path(host::text_of(std::filesystem::absolute(host::path_of(typed.empty() ? "." : typed))));
}

io::attributes attributes_of(header const & h) {
    io::attributes result;
    result.created = any::time(h.created, any::time::format_mac_seconds);
    result.modified = any::time(h.modified, any::time::format_mac_seconds);
    result.mac_file = io::mac::file_attributes(h.finder, {});
    return result;
}

uint32 fork_length(io::fork & fork, narrow_string const & path) {
    uint64 const length = fork.size();
    if (length > header::longest_fork)
        throw io::exception("has a fork that is too long for MacBinary", path, 0);
    return static_cast<uint32>(length);
}

/// 0 if there is no such fork. What is there but cannot be read must not pass for that.
uint32 side_fork_length(io::fork & fork, narrow_string const & path) {
    try {
        io::open_fork const opened(fork);
        return fork_length(*opened, path);
    } catch (io::exception const & e) {
        if (platform::nothing_is_there(static_cast<uint32>(e.error())) || io::item(fork.fork_name()).directory())
            return 0;
        throw;
    }
}

/// Header, names and lengths of the forks of `file`, whose data fork is open.
header header_for(io::file & file, narrow_string const & path) {
    io::attributes attributes;
    attributes.load(file.path(), io::attributes::read_sidecar);
    header result;
    result.name = nio::encode(file.path().leaf(), nio::encodings::mac_roman).substr(0, header::longest_name);
    result.finder = attributes.mac_file.value().info;
    result.data_length = fork_length(file.data_fork(), path);
    result.resource_length = side_fork_length(file.rsrc_fork(), path);
    result.created = mac_seconds(attributes.created.value());
    result.modified = mac_seconds(attributes.modified.value());
    return result;
}

void copy_padded(io::fork & fork, stream::output & target, uint32 length, copying & work) {
    io::fork_input source(fork);
    work.copy(source, target, length);
    target.fill(header::padded(length) - length, 0);
}

/// Moves what is complete to a free name, and gives its path as the host has it, by the folder's name as it was typed.
narrow_string place(part & file, any::path const & folder, any::string const & leaf, narrow_string const & typed) {
    for (int attempt = 1;; ++attempt) {
        io::file target = free_name(folder, leaf);
        narrow_string placed =
            host::text_of(host::path_of(typed) / host::path_of(platform::to_host(target.path().leaf())));
        try {
            file.place(target);
            return placed;
        } catch (io::exception const & e) {
            // The name went to somebody else meanwhile.
            if (e.error() != basic::codes::already_exists || attempt == 10)
                throw;
        }
    }
}

} // namespace

narrow_string unpack(archive & in, narrow_string const & folder) {
    auto const & h = in.head();
    in.check_length();
    copying work(in.path(), uint64(h.data_length) + h.resource_length);

    any::string const leaf = nio::decode(h.name, nio::encodings::mac_roman);
    if (leaf.empty())
        throw io::exception("has a name that this system cannot show", in.path(), 0);
    auto const where = absolute_path(folder);
    if (!io::item(where).directory())
        throw io::exception("is no folder", folder, 0);
    part made(where);
    auto const fork = [&](io::fork & target, uint64 at, uint32 length) {
        made.make(target);
        io::fork_output out(target);
        in.skip(at - in.tell());
        work.copy(in, out, length);
    };
    fork(made.file().data_fork(), h.data_at(), h.data_length);
    if (h.resource_length > 0)
        fork(made.file().rsrc_fork(), h.resource_at(), h.resource_length);
    made.make(made.file().info_fork());
    made.close();
    attributes_of(h).apply(made.file().path(), io::attributes::with_sidecar);
    return place(made, where, leaf, folder);
}

void pack(narrow_string const & path, narrow_string const & target) {
    io::file source(library_path(path));
    io::open_fork const data(source.data_fork());
    auto const h = header_for(source, path);
    copying work(path, uint64(h.data_length) + h.resource_length);

    io::file result(absolute_path(target));
    if (result.io::item::exists())
        throw io::exception("is there already", target, 0);
    part made(result.path().parent());
    made.make(made.file().data_fork());
    io::fork_output out(made.file().data_fork());
    h.write(out);
    copy_padded(*data, out, h.data_length, work);
    if (h.resource_length > 0) {
        io::open_fork const resources(source.rsrc_fork());
        copy_padded(*resources, out, h.resource_length, work);
    }
    made.close();
    made.place(result);
}
