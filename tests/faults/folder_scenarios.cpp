#include "tests/faults/frame.h"

#include "socle/io/directory.h"
#include "socle/io/file.h"
#include "socle/nio/attributes.h"
#include "socle/nio/directory.h"
#include "socle/nio/exception.h"
#include "socle/nio/file.h"
#include "socle/nio/fork_names.h"
#include "socle/nio/move.h"
#include "socle/platform/files.h"
#include "socle/un/exception.h"

#include <sys/xattr.h>

// Folders, moves, and streams that move with their file.

namespace faults {

namespace {

namespace fs = std::filesystem;

std::string const bytes(100000, 'b');

any::path library_path(wide_string const & path) { return {path, true}; }

void prepare_tree(place const & where) {
    fs::create_directories(where.here.host("tree/sub"));
    where.here.write("tree/sub/file", "x");
    where.here.write("tree/file", "x");
    where.here.write("tree/._file", "sidecar");
    where.here.write("tree/file.info", "sidecar");
    where.here.write("kept", "kept");
    fs::create_directory(where.here.host("target"));
    where.here.write("target/kept", "kept");
    fs::create_symlink("../kept", where.here.host("tree/link"));
    fs::create_symlink("../target", where.here.host("tree/folder_link"));
}

bool remove_tree(place const & where, report &) {
    nio::directory(where.here.path("tree")).unlink_with_children(true);
    return !where.here.exists("tree");
}

bool remove_tree_by_io(place const & where, report &) {
    io::directory(library_path(where.here.path("tree"))).unlink_with_children(true);
    return !where.here.exists("tree");
}

bool make_folders(place const & where, report &) {
    nio::directory wide(where.here.path("a/b"));
    bool renamed = wide.create();
    io::directory narrow(library_path(where.here.path("c/d")));
    renamed = narrow.create_with_parents(false) || renamed;
    return !renamed && where.here.exists("a/b") && where.here.exists("c/d");
}

/// What may throw what it cannot reach.
void tell(auto && step) {
    try {
        step();
    } catch (nio::exception const &) {
    } catch (un::exception const &) {
    }
}

/// Walks tell nothing of what they cannot reach.
bool walk(place const & where, report &) {
    int entries = 0;
    io::directory folder(library_path(where.here.path("tree")));
    for (auto at = folder.begin(), end = folder.end(); at != end; ++at) {
        entries += at->directory() ? 10 : 1;
        tell([&] { at.load_attributes(1); });
    }
    nio::directory const wide(where.here.path("tree"));
    nio::attributes about;
    for (auto at = wide.begin(), end = wide.end(); at != end; ++at) {
        entries += nio::is_directory(*at) ? 10 : 1;
        tell([&] { at.load(about); });
    }
    io::item::summary sum;
    folder.scan(sum);
    check(entries <= 48 && sum.items <= 8, "more is there than there is");
    return true;
}

bool use_temporary(place const & where, report &) {
    // Where deleting it fails, nobody is told.
    struct emptied {
        std::string folder;
        ~emptied() {
            uncounted const work;
            for (fs::path const & left : fs::directory_iterator(folder))
                if (left.filename() != "kept")
                    fs::remove(left);
        }
    } const at_end{where.here.host("target")};
    io::directory const folder(library_path(where.here.path("target")));
    {
        io::file file;
        file.create_temp(folder);
        file.data_fork().close(false);
    }
    io::item unique(library_path(where.here.path("kept")));
    unique.make_unique(3);
    return true;
}

void prepare_move(place const & where) {
    where.here.write("file", bytes);
    setxattr(where.here.host("file").c_str(), "user.note", "goes along", 10, 0);
    where.here.write("._file", "sidecar");
    where.here.write("there", "there");
}

bool move_by_nio(place const & where, wide_string target) { return !nio::move(where.here.path("file"), target, true); }

bool move_link(place const & where, report &) {
    struct looking {
        place const & where;
        ~looking() {
            uncounted const work;
            bool const left = fs::is_symlink(where.here.host("tree/link"));
            check(left != fs::is_symlink(where.there.host("moved")), "a link is lost, or there twice");
        }
    } const at_end{where};
    wide_string target = where.there.path("moved");
    return !nio::move(where.here.path("tree/link"), target, true);
}

bool move_by_io(place const & where, wide_string const & target) {
    io::item(library_path(where.here.path("file"))).move(library_path(target));
    return true;
}

void prepare_streams(place const & where) {
    where.here.write("n/f", bytes);
    put_stream(u"N:\\f:note", "remember");
    put_stream(u"N:\\f:AFP_Resource", "resource");
}

void prepare_orphans(place const & where) {
    prepare_streams(where);
    where.here.write("n/gone", "");
    put_stream(u"N:\\gone:note", "gone");
    std::filesystem::remove(where.here.host("n/gone"));
}

bool move_streams(wide_string target) { return !nio::move(u"N:\\f", target, true); }

scenario const table[] = {
    {"nio_tree_is_removed", promise::stepwise, prepare_tree, remove_tree},
    {"io_tree_is_removed", promise::stepwise, prepare_tree, remove_tree_by_io},
    {"folders_are_made", promise::stepwise, prepare_tree, make_folders},
    {"folders_are_walked", promise::whole, prepare_tree, walk},
    {"temporary_files_go", promise::whole, prepare_tree, use_temporary},
    {"nio_moves_within", promise::whole, prepare_move,
     [](place const & where, report &) { return move_by_nio(where, where.here.path("moved")); }},
    {"nio_moves_across", promise::whole, prepare_move,
     [](place const & where, report &) { return move_by_nio(where, where.there.path("moved")); },
     scenario::another_file_system},
    {"a_link_moves_across", promise::whole, prepare_tree, move_link, scenario::another_file_system},
    {"io_moves_within", promise::whole, prepare_move,
     [](place const & where, report &) { return move_by_io(where, where.here.path("moved")); }},
    {"io_moves_across", promise::whole, prepare_move,
     [](place const & where, report &) { return move_by_io(where, where.there.path("moved")); },
     scenario::another_file_system},
    {"streams_move_within", promise::whole, prepare_streams,
     [](place const &, report &) { return move_streams(u"N:\\g"); }, scenario::named_streams},
    {"streams_move_across", promise::whole, prepare_streams,
     [](place const &, report &) { return move_streams(u"M:\\g"); }, scenario::named_streams, false, true},
    {"a_store_is_swept", promise::whole, prepare_orphans,
     [](place const & where, report &) {
         bool const swept = platform::sweep_volume('N') == 0;
         uncounted const work;
         return swept && where.here.entries("n/.socle_streams") == 1;
     },
     scenario::named_streams},
    {"streams_go_with_their_file", promise::stepwise, prepare_streams,
     [](place const &, report &) {
         nio::unlink(u"N:\\f", true);
         return true;
     },
     scenario::named_streams},
    {"one_stream_is_deleted", promise::stepwise, prepare_streams,
     [](place const &, report &) { return platform::DeleteFileW(u"N:\\f:note"); }, scenario::named_streams},
};

} // namespace

std::span<scenario const> folder_scenarios() { return table; }

} // namespace faults
