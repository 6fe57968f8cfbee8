// Writes a catalogue of a folder as XML: every file with its three forks, wherever they lie, and what the Finder knows
// of it. Carries the whole into another folder, where forks are kept in the way that is asked for.

#include "carrier.h"
#include "tree.h"
#include "xml_catalog.h"

#include "common/host_text.h"

#include <socle/basic/exception.h>
#include <socle/command/line.h>
#include <socle/command/option.h>
#include <socle/platform/host.h>
#include <socle/stream/output.h>
#include <socle/un/exception.h>

#include <exception>
#include <filesystem>
#include <iostream>

namespace {

namespace fs = std::filesystem;

fork_form form_named(narrow_string const & name) {
    if (name == "sidecar")
        return fork_form::sidecar;
    if (name == "appledouble")
        return fork_form::apple_double;
    if (name == "ntfs")
        return fork_form::stream;
    throw un::exception("--forks takes sidecar, appledouble or ntfs", "catalog");
}

/// The host's path from the root on, with links in it followed; one that is not there yet is no problem.
narrow_string whole_path(narrow_string const & path) {
    std::error_code failed;
    auto const result = fs::weakly_canonical(fs::absolute(path), failed);
    if (failed)
        throw un::exception("cannot look at " + readable_path(path), "catalog");
    return result.string();
}

bool within(narrow_string const & inner, narrow_string const & outer) {
    return (inner + '/').starts_with(outer == "/" ? outer : outer + '/');
}

/// Forks in streams show only on a volume that is known to have them, and not every file system can.
void look_for_streams(narrow_string const & folder) {
    if (platform::attach_volume('S', folder, "NTFS") != 0)
        platform::attach_volume('S', folder, "plain");
}

/// The process's output, which may be a pipe and so has no positions to ask for.
class standard_output : public stream::output {
public:
    using stream::output::write;

    void write(char byte) override { std::cout.put(byte); }
    void write(char const * data, uint32 count) override { std::cout.write(data, count); }
    void flush() override {
        if (!std::cout.flush())
            throw un::exception("cannot write the catalogue", "catalog");
    }
    uint64 tell() const override { return 0; }
    uint64 size() const override { return all_ones; }
};

void show(tree_summary const & sum, bool carrying) {
    std::cerr << "catalog: " << sum.files << " files, " << sum.folders << " folders";
    if (sum.others > 0)
        std::cerr << ", " << sum.others << " others";
    if (carrying)
        std::cerr << "; " << sum.carried << " files carried, " << sum.there_already << " there already";
    std::cerr << "; " << sum.complaints << " complaints\n";
}

bool catalogue(narrow_string const & folder, bool checksums, carrier * carrier) {
    standard_output out;
    xml_catalog catalog(out, checksums);
    auto const sum = tree(folder, catalog, carrier).walk();
    out.flush();
    show(sum, carrier != nullptr);
    return sum.complaints == 0;
}

bool run(int argc, char ** argv) {
    command::line line(argc, argv);
    command::option<narrow_string> to(line, "--to", "", "carry the files into this folder");
    command::option<narrow_string> forks(line, "--forks", "sidecar",
                                         "keep forks there in: sidecar (name.rsrc, name.info), appledouble (._name) or "
                                         "ntfs (streams of the file)");
    command::option<bool> checksums(line, "--checksums", false, "note the CRC-32 of every fork");
    command::option<bool> help(line, "--help|-h", false,
                               "show this list; the exit status is 0 if all went well, and 1 with any complaint");
    line.digest();
    if (help() || line.size() != 1) {
        line.show_options("catalog, which takes one folder and writes a catalogue of it");
        return help();
    }
    auto const form = form_named(forks());
    narrow_string const folder = whole_path(line.front());
    if (!fs::is_directory(folder))
        throw un::exception("is no folder: " + readable_path(line.front()), "catalog");
    if (!to.found()) {
        look_for_streams(folder);
        return catalogue(folder, checksums(), nullptr);
    }
    narrow_string const target = whole_path(to());
    if (within(target, folder) || within(folder, target))
        throw un::exception("one folder lies in the other: " + readable_path(target), "catalog");
    look_for_streams(folder);
    // As it was given: a link shows.
    carrier carrier(fs::absolute(to()).string(), form);
    return catalogue(folder, checksums(), &carrier);
}

} // namespace

int main(int argc, char ** argv) {
    try {
        return run(argc, argv) ? 0 : 1;
    } catch (basic::exception const & e) {
        std::cerr << "catalog: " << readable_path(e.message()) << '\n';
    } catch (un::exception const & e) {
        std::cerr << "catalog: " << readable_path(e.message()) << '\n';
    } catch (std::exception const & e) {
        std::cerr << "catalog: " << readable_path(e.what()) << '\n';
    }
    return 1;
}
