// Writes a catalogue of a folder as XML or JSON: every file with its three forks, wherever they lie, and what the
// Finder knows of it. Carries the whole into another folder, where forks are kept in the way that is asked for.

#include "carrier.h"
#include "catalogue.h"
#include "selection.h"
#include "tree.h"

#include "common/command_line.h"
#include "common/document.h"
#include "common/host_text.h"

#include <socle/nio/exception.h>
#include <socle/platform/host.h>

#include <filesystem>
#include <iostream>

namespace {

namespace fs = std::filesystem;

command_line::description const about = {
    "catalog", "FOLDER",
    "Writes a catalogue of a folder: its files with all their forks. With --to, carries them into another folder,\n"
    "and then writes a catalogue only if --output asks for one.",
    "  catalog --checksums ~/Pictures >pictures.xml\n"
    "  catalog --to /mnt/backup --forks appledouble --verify ~/Pictures\n"
    "  catalog --to /mnt/backup --update --exclude '*.tmp' ~/Pictures\n",
    "  0  all is there, and as it was\n"
    "  1  something could not be read or carried, or was left out: standard error tells what\n"
    "  2  the command line is wrong, and nothing was done\n"};

fork_form form_named(narrow_string const & name) {
    if (name == "sidecar" || name.empty())
        return fork_form::sidecar;
    if (name == "appledouble")
        return fork_form::apple_double;
    if (name == "ntfs")
        return fork_form::stream;
    throw usage_error("--forks takes sidecar, appledouble or ntfs");
}

void keep(narrow_string const & list, carrying & how) {
    for (auto const & name : parts_of_list(list)) {
        bool const all = name == "all";
        if (!all && name != "owner" && name != "acls" && name != "xattrs" && name != "links")
            throw usage_error("--preserve takes owner, acls, xattrs, links or all, with commas between");
        how.keep.owner = how.keep.owner || all || name == "owner";
        how.keep.acls = how.keep.acls || all || name == "acls";
        how.keep.attributes = how.keep.attributes || all || name == "xattrs";
        how.hard_links = how.hard_links || all || name == "links";
    }
}

/// The path from the root on, with links in it followed; one that is not there yet is no problem.
fs::path whole_path(narrow_string const & path) {
    std::error_code failed;
    auto const result = fs::weakly_canonical(fs::absolute(host::path_of(path)), failed);
    if (failed)
        throw nio::exception("cannot look at " + readable_path(path) + ": " + failed.message());
    return result;
}

/// Whether a path leads to a folder, or to something in it, however it is spelled.
bool within(fs::path path, fs::path const & folder) {
    auto const wanted = host::status_of(host::text_of(folder));
    for (bool top = false; wanted.kind == host::kind::folder && !top;) {
        if (host::status_of(host::text_of(path)).same_file(wanted))
            return true;
        top = path == path.parent_path();
        path = path.parent_path();
    }
    return false;
}

/// Forks in streams show only on a volume that is known to have them, and not every file system can. Where a user's own
/// `.socle_streams` is in the place of theirs, that is one of the folder's files.
bool look_for_streams(narrow_string const & folder) {
    bool const streams = platform::attach_volume('S', folder, "NTFS") == 0;
    if (!streams)
        platform::attach_volume('S', folder, "plain");
    return streams;
}

struct settings {
    narrow_string folder, target, output;
    bool to = false, checksums = false, json = false, quiet = false;
    carrying how;
};

bool work(settings const & wanted, selection const & selection) {
    auto const whole = whole_path(wanted.folder);
    auto const folder = host::text_of(whole);
    if (host::kind_of(folder) != host::kind::folder)
        throw nio::exception("is no folder: " + readable_path(wanted.folder));
    if (wanted.to) {
        auto const target = whole_path(wanted.target);
        if (within(target, whole) || within(whole, target))
            throw nio::exception("one folder lies in the other: " + readable_path(wanted.target));
    }
    host::folder const source(folder, true);
    auto const root = platform::from_host(folder);
    report report(wanted.folder, root, wanted.quiet);
    std::optional<carrier> carrier;
    if (wanted.to) {
        host::make_private();
        host::hold_many_folders();
        carrier.emplace(wanted.target, wanted.how, report);
    }
    std::optional<document> out;
    if (!wanted.output.empty())
        out.emplace(wanted.output);
    else if (!wanted.to && !wanted.quiet)
        out.emplace();
    std::unique_ptr<notation> notation;
    std::optional<catalogue> catalogue;
    if (out) {
        notation = wanted.json ? json_notation(*out) : xml_notation(*out);
        catalogue.emplace(*notation, wanted.checksums);
    }
    auto const attach = [&] { return look_for_streams(source.path()); };
    tree(wanted.folder, root, attach, selection, catalogue ? &*catalogue : nullptr, carrier ? &*carrier : nullptr,
         report)
        .walk();
    if (out)
        out->finish();
    report.bar().hide();
    report.show(wanted.to, wanted.how.dry);
    return report.good();
}

int run(int argc, char ** argv) {
    command_line line(argc, argv, about);
    text const to(line, "--to", "FOLDER", "carry the files into this folder, which is made if it is missing");
    text const forks(line, "--forks", "FORM",
                     "keep forks there as sidecar (name.rsrc and name.info, if nothing\n"
                     "else is said), appledouble (._name) or ntfs (streams of the file)");
    flag const update(line, "--update|-u", "replace what is there and older than the source");
    flag const verify(line, "--verify", "compare every byte of every fork, also of what is there already");
    text const preserve(line, "--preserve", "LIST", "carry also owner, acls, xattrs, links (hard ones), or all");
    flag const dry(line, "--dry-run|-n", "make nothing, and tell what would be carried");
    text const include(line, "--include", "PATTERN",
                       "only files that one of these fits: \"*\" stands for anything, a\n"
                       "name may go on behind the pattern, and a \"/\" makes it one for the path");
    text const exclude(line, "--exclude", "PATTERN", "no files or folders that one of these fits");
    text const output(line, "--output|-o", "FILE", "write the catalogue into this file; \"-\" is the standard output");
    flag const json(line, "--json", "write the catalogue as JSON, not as XML");
    flag const checksums(line, "--checksums", "note the CRC-32 of every fork in it");
    flag const quiet(line, "--quiet|-q", "complaints only: no catalogue unless --output asks, no summary");
    flag const help(line, "--help|-h", "show this list");
    flag const version(line, "--version", "show the version");

    auto const operands = line.read();
    if (help() || version()) {
        help() ? line.show_help() : line.show_version();
        return std::cout.flush() ? 0 : 1;
    }
    if (operands.size() != 1 || operands[0].empty())
        throw usage_error(operands.empty() ? "the folder is missing" : "one folder at a time");
    if (!to.found() && (forks.found() || update() || verify() || preserve.found() || dry()))
        throw usage_error("--forks, --update, --verify, --preserve and --dry-run go with --to");
    settings wanted{operands[0], to(), output(), to.found(), checksums(), json(), quiet(), {}};
    wanted.how.form = form_named(forks());
    wanted.how.update = update();
    wanted.how.verify = verify();
    wanted.how.dry = dry();
    for (auto const & list : preserve.all())
        keep(list, wanted.how);
    return work(wanted, selection(include.all(), exclude.all())) ? 0 : 1;
}

} // namespace

int main(int argc, char ** argv) { return run_program("catalog", run, argc, argv); }
