#include "tests/faults/frame.h"

#include "socle/io/attributes.h"
#include "socle/io/file.h"
#include "socle/io/fork_input.h"
#include "socle/io/fork_output.h"
#include "socle/io/open_fork.h"
#include "socle/nio/attributes.h"
#include "socle/nio/file.h"
#include "socle/platform/errors.h"

#include <cstdlib>
#include <vector>

// One file at a time: written, read, resized, and given attributes.

namespace faults {

namespace {

using namespace std::string_literals;

std::string const old_bytes(9000, 'o');
std::string const new_bytes = [] {
    std::string bytes;
    for (int i = 0; i < 10000; ++i)
        bytes += static_cast<char>('a' + i % 23);
    return bytes;
}();
constexpr uint64 some_time = 126227808000000000;

any::path old_path(place const & where, char const * name) { return {where.here.path(name), true}; }

void write_in_pieces(auto & out, report & written) {
    constexpr uint32 piece = 2500;
    for (std::size_t at = 0; at < new_bytes.size(); at += piece) {
        out.write(new_bytes.data() + at, piece);
        written += piece;
    }
}

void check_reads(auto & in, std::string const & expected) {
    std::string got(expected.size() + 1, '\0');
    got.resize(in.read(got.data(), static_cast<uint32>(got.size())));
    check(got == expected, "other bytes are read than are there");
}

bool write_fork(place const & where, report & written) {
    io::file file(old_path(where, "file"));
    any::path const path = file.path();
    io::open_fork made(file.data_fork(), io::fork::create_always);
    io::fork_output out(*made);
    write_in_pieces(out, written);
    made.commit();
    return file.path().full_string() == path.full_string();
}

bool resize_fork(place const & where, report &) {
    io::file file(old_path(where, "file"));
    io::open_fork fork(file.data_fork(), io::fork::open_read_write);
    fork->resize(100);
    fork->resize(20000);
    bool const good = fork->tell() == 0 && fork->size() == 20000;
    fork.commit();
    return good;
}

bool read_forks(place const & where, report &) {
    io::file file(old_path(where, "file"));
    for (io::fork * const fork : {&file.data_fork(), &file.rsrc_fork()}) {
        io::open_fork const opened(*fork);
        io::fork_input in(*opened);
        in.seek(1);
        check_reads(in, old_bytes.substr(1));
    }
    return true;
}

bool unlink_forks(place const & where, report &) {
    io::file file(old_path(where, "file"));
    file.rsrc_fork().unlink(true);
    file.unlink(false);
    return !file.exists();
}

bool carry_attributes(place const & where, report &) {
    io::attributes set;
    set.modified = any::time(some_time, nio::time::format_file_time);
    set.created = set.modified.value();
    io::mac::file_attributes mac;
    mac.info.type = io::mac::os_type("TEXT");
    set.mac_file = mac;
    set.apply(old_path(where, "file"), 1);
    set.load(old_path(where, "file"), 3);
    return true;
}

bool write_file(place const & where, report & written) {
    nio::file file(where.here.path("new/folder/file"), nio::file::mode_closed);
    if (file.create(true) || !file.is_open())
        return false;
    write_in_pieces(file, written);
    file.flush();
    return true;
}

bool make_anew(place const & where, report & written) {
    nio::file file(where.here.path("file"), nio::file::mode_anew);
    if (!file.is_open())
        return false;
    write_in_pieces(file, written);
    return true;
}

bool use_modes(place const & where, report &) {
    nio::file reader(where.here.path("file"), nio::file::mode_read);
    check_reads(reader, old_bytes);
    nio::file writer(where.here.path("file"), nio::file::mode_read_write);
    bool const resized = writer.seek(8000) && writer.resize(4000) && writer.resize(12000);
    return resized && writer.size() == 12000 && writer.tell() == 4000;
}

bool write_rsrc(place const & where, wide_string const & path, bool allow_ntfs, report & written) {
    nio::file file(path, nio::file::mode_closed);
    if (file.create_rsrc(allow_ntfs, true) || !file.is_open())
        return false;
    write_in_pieces(file, written);
    file.close();
    file.open_rsrc();
    check_reads(file, new_bytes);
    return where.here.exists("file");
}

bool write_sidecar(place const & where, report & written) {
    return write_rsrc(where, where.here.path("file"), true, written);
}

bool write_stream(place const & where, report & written) { return write_rsrc(where, u"N:\\f", true, written); }

bool apply_info(wide_string const & path, bool allow_ntfs) {
    nio::item item(path);
    nio::attributes set;
    set.modified.set(some_time, nio::time::format_file_time);
    set.created = set.modified;
    set.finder_info.fill('f');
    set.apply(item, true, allow_ntfs);
    return nio::attributes(item).finder_info == set.finder_info;
}

void prepare_streams(place const & where) {
    where.here.write("n/f", "data");
    where.here.write("n/g", "other");
    where.here.write("file", "untouched");
    put_stream(u"N:\\f:note", old_bytes);
    put_stream(u"N:\\f:AFP_Resource", "resource");
    put_stream(u"N:\\f:AFP_AfpInfo", std::string(60, 'i'));
}

/// The store keeps a name of this length in a folder of its own.
bool make_long_stream(place const &, report &) {
    put_stream(u"N:\\g:" + wide_string(60, u'N'), "new");
    return nio::file(u"N:\\g:" + wide_string(60, u'N'), nio::file::mode_read).size() == 3;
}

/// M: is a copy of N: then, as tools make it that keep extended attributes, and knows its files anew.
void prepare_copied_volume(place const & where) {
    prepare_streams(where);
    std::filesystem::rename(where.here.host("n/f"), where.here.host("n/renamed"));
    platform::detach_volume('M');
    std::string const folder = "'" + where.here.folder();
    check(std::system(("cp -a " + folder + "/n/.' " + folder + "/m'").c_str()) == 0, "the volume cannot be copied");
}

/// The first change in a copy gives the file streams of its own.
bool write_in_copied_volume(place const & where, report & written) {
    struct attached {
        ~attached() { platform::detach_volume('M'); }
    } const at_end;
    platform::detach_volume('M');
    if (platform::attach_volume('M', where.here.host("m"), "NTFS") != 0)
        return false;
    nio::file stream(u"M:\\renamed:more", 4);
    if (stream.is_open())
        write_in_pieces(stream, written);
    return stream.is_open();
}

bool attach_copied_volume(place const & where, report &) {
    platform::detach_volume('M');
    uint32 const code = platform::attach_volume('M', where.here.host("m"), "NTFS");
    platform::detach_volume('M');
    platform::SetLastError(code);
    return code == 0;
}

bool back_up(place const &, report &) {
    std::vector<char> bytes(30000);
    nio::file from(u"N:\\f", nio::file::mode_closed);
    from.open_ntfs();
    bytes.resize(from.read_ntfs(bytes.data(), 30000));
    from.close_ntfs();
    nio::file to(u"N:\\g", nio::file::mode_closed);
    to.open_ntfs_w();
    to.write_ntfs(bytes.data(), static_cast<uint32>(bytes.size()));
    to.close_ntfs();
    return true;
}

void prepare_file(place const & where) {
    where.here.write("file", old_bytes);
    where.here.write("file.rsrc", old_bytes);
}

void prepare_nothing(place const & where) { where.here.write("other", old_bytes); }

scenario const table[] = {
    {"io_file_is_written", promise::growing, prepare_nothing, write_fork},
    {"io_file_is_written_anew", promise::growing, prepare_file, write_fork},
    {"io_fork_is_resized", promise::growing, prepare_file, resize_fork},
    {"io_forks_are_read", promise::whole, prepare_file, read_forks},
    {"io_forks_are_deleted", promise::stepwise, prepare_file, unlink_forks},
    {"io_attributes_are_carried", promise::growing, prepare_file, carry_attributes},
    {"nio_file_is_written", promise::growing, prepare_nothing, write_file},
    {"nio_file_is_made_anew", promise::growing, prepare_file, make_anew},
    {"nio_file_is_read_and_resized", promise::growing, prepare_file, use_modes},
    {"nio_fork_goes_to_a_sidecar", promise::growing, prepare_file, write_sidecar},
    {"nio_fork_goes_to_a_stream", promise::growing, prepare_streams, write_stream, scenario::named_streams},
    {"nio_info_goes_to_a_sidecar", promise::growing, prepare_file,
     [](place const & where, report &) { return apply_info(where.here.path("file"), false); }},
    {"nio_info_goes_to_a_stream", promise::growing, prepare_streams,
     [](place const &, report &) { return apply_info(u"N:\\f", true); }, scenario::named_streams},
    {"stream_of_a_long_name_is_made", promise::growing, prepare_streams, make_long_stream, scenario::named_streams},
    {"copied_volume_is_attached", promise::whole, prepare_copied_volume, attach_copied_volume, scenario::named_streams},
    {"copied_volume_is_written", promise::growing, prepare_copied_volume, write_in_copied_volume,
     scenario::named_streams},
    {"nio_streams_are_backed_up", promise::growing, prepare_streams, back_up, scenario::named_streams},
};

} // namespace

std::span<scenario const> file_scenarios() { return table; }

} // namespace faults
