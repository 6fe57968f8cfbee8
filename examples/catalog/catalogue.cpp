#include "catalogue.h"

#include "checksum.h"

#include "common/failure.h"
#include "common/host_text.h"
#include "common/mac_roman.h"

#include <socle/nio/exception.h>
#include <socle/nio/path.h>
#include <socle/platform/host.h>
#include <socle/un/digits.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace {

narrow_string hex(uint64 value, int width) { return "0x" + un::write(value, 16, width); }

/// GMT, as `1989-05-19T09:02:00Z`.
narrow_string date_text(nio::time const & time) {
    using namespace std::chrono;
    sys_seconds const when = sys_days(January / 1 / 1601) + seconds(time.file_time() / 10'000'000);
    auto const day = floor<days>(when);
    year_month_day const date(day);
    hh_mm_ss const clock(when - day);
    char text[48];
    std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02dZ", int(date.year()), unsigned(date.month()),
                  unsigned(date.day()), int(clock.hours().count()), int(clock.minutes().count()),
                  int(clock.seconds().count()));
    return text;
}

narrow_string name_text(wide_string const & leaf) { return readable_path(platform::to_host(leaf)); }

/// Where a fork lies, by the name of the file or stream.
narrow_string place_text(wide_string const & path) {
    wide_string const leaf = nio::leaf(path, u'\\');
    auto const colon = std::min(leaf.find(u':'), leaf.size());
    wide_string const stream = leaf.substr(colon);
    return name_text(leaf.substr(0, colon)) + narrow_string(stream.begin(), stream.end());
}

narrow_string truth(bool value) { return value ? "true" : "false"; }

} // namespace

notation::~notation() = default;

void catalogue::begin(narrow_string const & typed, file_record const & top) {
    out_.begin();
    out_.begin_entry("folder", {{"path", readable_path(typed)}});
    facts(top);
    out_.notes(top.doubts);
    out_.begin_contents();
}

void catalogue::end() {
    end_folder();
    out_.end();
}

void catalogue::begin_folder(file_record const & folder, wide_string const & as) {
    open("folder", nio::leaf(folder.path, u'\\'), as);
    facts(folder);
    if (folder.has_finder())
        fork("information", folder.information, "");
    out_.notes(folder.doubts);
    out_.begin_contents();
}

void catalogue::end_folder() {
    out_.end_contents();
    out_.end_entry("folder");
}

void catalogue::file(file_record const & file, wide_string const & as) {
    auto notes = file.doubts;
    bool unreadable = false;
    narrow_string data_sum, resource_sum, information_sum;
    try {
        data_sum = sum_of(file.data);
        resource_sum = sum_of(file.resource);
        information_sum = file.has_finder() ? sum_of(file.information) : "";
    } catch (nio::exception const &) {
        unreadable = true;
        notes.push_back(current_failure());
    }
    open("file", nio::leaf(file.path, u'\\'), as);
    facts(file);
    fork("data", file.data, data_sum);
    fork("resource", file.resource, resource_sum);
    if (file.has_finder())
        fork("information", file.information, information_sum);
    out_.notes(notes);
    out_.end_entry("file");
    if (unreadable)
        throw nio::exception(notes.back());
}

void catalogue::other(wide_string const & leaf, bool link) {
    narrow_string const kind = link ? "link" : "other";
    open(kind, leaf, {});
    out_.end_entry(kind);
}

void catalogue::open(narrow_string const & kind, wide_string const & leaf, wide_string const & as) {
    notation::fields named = {{"name", name_text(leaf)}};
    if (!as.empty() && as != leaf)
        named.emplace_back("as", name_text(as));
    out_.begin_entry(kind, named);
}

void catalogue::facts(file_record const & record) {
    if (record.has_finder() && !record.folder()) {
        auto const info = record.file_info();
        out_.field("type", readable(info.type.to_string()));
        out_.field("creator", readable(info.creator.to_string()));
        out_.field("finder_flags", hex(info.flags, 4));
    }
    if (record.has_finder())
        out_.field("finder_info", un::hex(byte_vector(record.finder.begin(), record.finder.end())));
    out_.field("created", date_text(record.created));
    out_.field("modified", date_text(record.modified));
    out_.field("mode", un::write(record.status.mode, 8, 4));
    out_.group("attributes", {{"read_only", truth((record.bits & 1) != 0)},
                              {"hidden", truth((record.bits & 2) != 0)},
                              {"system", truth((record.bits & 4) != 0)}});
}

void catalogue::fork(narrow_string const & name, extent const & bytes, narrow_string const & sum) {
    notation::fields values = {{"size", std::to_string(bytes.size)}};
    if (!sum.empty())
        values.emplace_back("crc32", sum);
    if (name != "data" && !bytes.path.empty())
        values.emplace_back("in", place_text(bytes.path));
    out_.group(name, values);
}

narrow_string catalogue::sum_of(extent const & bytes) const {
    return checksums_ && bytes.size > 0 ? hex(checksum(bytes), 8) : "";
}
