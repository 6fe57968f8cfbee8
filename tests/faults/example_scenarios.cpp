#include "tests/faults/frame.h"

#include "examples/catalog/carrier.h"
#include "examples/catalog/tree.h"
#include "examples/catalog/xml_catalog.h"
#include "examples/macbinary/packing.h"
#include "socle/nio/attributes.h"
#include "socle/nio/file.h"
#include "socle/stream/infinite_output.h"

#include <iostream>

// What the examples write: one unpacks and packs a file, one carries a folder with all forks into another.

namespace faults {

namespace {

namespace fs = std::filesystem;

void prepare_packed(place const & where) {
    where.here.write("packed.bin", [] {
        std::ifstream in(TEST_SAMPLES "/both_forks.bin", std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }());
    fs::create_directory(where.here.host("out"));
}

void prepare_unpacked(place const & where) {
    prepare_packed(where);
    fs::rename(unpack(where.here.host("packed.bin"), where.here.host("out")), where.here.host("out/made"));
    for (fs::path const & side : fs::directory_iterator(where.here.host("out")))
        if (side.has_extension())
            fs::rename(side, where.here.host("out/made") + side.extension().string());
}

void give_finder_info(wide_string const & path, bool stream) {
    nio::attributes set;
    set.finder_info.fill('f');
    nio::item item(path);
    set.apply(item, true, stream);
}

void prepare_forks(place const & where) {
    fs::create_directories(where.here.host("from/sub"));
    fs::create_directory(where.here.host("to"));
    where.here.write("to/kept", "kept");
    where.here.write("from/file", std::string(100000, 'd'));
    where.here.write("from/file.rsrc", "resources");
    give_finder_info(where.here.path("from/file"), false);
}

void prepare_streams(place const & where) {
    where.here.write("n/f", "data");
    put_stream(u"N:\\f:note", "note");
    put_stream(u"N:\\f:AFP_Resource", "AFP_");
    give_finder_info(u"N:\\f", true);
}

/// As the program does it, but for the words and the catalogue.
bool carry(place const & where, char const * from, char const * to, fork_form form) {
    struct silence {
        std::streambuf * const words = std::cerr.rdbuf(nullptr);
        ~silence() { std::cerr.rdbuf(words); }
    } const here;
    // What could not be deleted is dealt with by the next run.
    struct emptied {
        std::string folder;
        ~emptied() {
            uncounted const work;
            fs::remove_all(folder);
        }
    } const at_end{where.here.host(to) + "/.catalog.part"};
    stream::infinite_output unread;
    xml_catalog catalog(unread, false);
    carrier carrier(where.here.host(to), form);
    return tree(where.here.host(from), catalog, &carrier).walk().complaints == 0;
}

scenario const table[] = {
    {"macbinary_unpacks", promise::whole, prepare_packed,
     [](place const & where, report &) {
         return unpack(where.here.host("packed.bin"), where.here.host("out")).size() > 0;
     }},
    {"macbinary_packs", promise::whole, prepare_unpacked,
     [](place const & where, report &) {
         pack(where.here.host("out/made"), where.here.host("again.bin"));
         return true;
     }},
};

scenario const catalog_table[] = {
    {"catalog_carries_to_doubles", promise::stepwise, prepare_forks,
     [](place const & where, report &) { return carry(where, "from", "to", fork_form::apple_double); },
     scenario::nothing, true},
    {"catalog_carries_to_streams", promise::stepwise, prepare_streams,
     [](place const & where, report &) { return carry(where, "n", "m", fork_form::stream); }, scenario::named_streams,
     true},
};

} // namespace

std::span<scenario const> example_scenarios() { return table; }
std::span<scenario const> catalog_scenarios() { return catalog_table; }

} // namespace faults
