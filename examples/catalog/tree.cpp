#include "tree.h"

#include "common/host_text.h"

#include <socle/basic/exception.h>
#include <socle/io/item.h>
#include <socle/nio/path.h>
#include <socle/platform/host.h>
#include <socle/un/exception.h>

#include <algorithm>
#include <functional>
#include <iostream>
#include <set>
#include <tuple>

namespace {

/// An entry counts as much as this many bytes in the progress of the work.
constexpr uint64 entry_weight = 4096;

uint64 weight_of(wide_string const & root) {
    io::item item(any::path(any::string(root), true));
    auto const sum = item.scan(item);
    return sum.bytes + sum.items * entry_weight;
}

/// The names of the entries in another folder, in the order of the entries.
std::vector<wide_string> assign_names(std::vector<entry> const & entries, std::vector<file_record> const & records,
                                      target_names & names) {
    std::vector<std::size_t> order(entries.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    // Names that can be kept come first, and an owner comes before what has the name of one of its forks.
    auto const rank = [&](std::size_t i) {
        auto const & leaf = entries[i].leaf;
        return std::make_tuple(!target_names::fits(leaf), leaf.size(), std::cref(leaf));
    };
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return rank(a) < rank(b); });
    std::vector<wide_string> result(entries.size());
    for (auto const i : order) {
        auto const kind = entries[i].kind;
        if (kind == entry_kind::file || kind == entry_kind::folder)
            result[i] = names.assign(entries[i].leaf, records[i].resource.size > 0, records[i].has_finder());
    }
    return result;
}

} // namespace

template <class Work>
bool tree::try_to(wide_string const & path, Work work) {
    try {
        work();
        return true;
    } catch (basic::exception const & e) {
        complain(path, readable_path(e.message()));
    } catch (un::exception const & e) {
        complain(path, readable_path(e.message()));
    }
    return false;
}

tree::tree(narrow_string const & root, xml_catalog & catalog, carrier * carrier)
    : root_(platform::from_host(root)), catalog_(catalog), carrier_(carrier), progress_(weight_of(root_)) {}

tree_summary tree::walk() {
    catalog_.begin(platform::to_host(root_));
    folder(root_, carrier::root());
    catalog_.end();
    return summary_;
}

void tree::folder(wide_string const & path, wide_string const & target) {
    auto const found = list_folder(path);
    if (found.error != 0)
        complain(path, "was not walked to its end, for the system's error " + std::to_string(found.error));

    auto const & entries = found.entries;
    std::vector<file_record> records(entries.size());
    std::set<wide_string> present;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        auto const & e = entries[i];
        present.insert({e.leaf, e.rsrc, e.info, e.twin});
        if (e.kind == entry_kind::file || e.kind == entry_kind::folder)
            try_to(nio::concatenate(path, e.leaf, u'\\'), [&] { records[i] = look_at(path, e); });
    }
    std::vector<wide_string> leafs(entries.size());
    if (carrier_) {
        target_names names(carrier_->form(), present, {path == root_ ? carrier::work_name() : wide_string()});
        leafs = assign_names(entries, records, names);
    }
    for (std::size_t i = 0; i < entries.size(); ++i) {
        auto const & e = entries[i];
        progress_.add(entry_weight);
        wide_string const to = nio::concatenate(target, leafs[i], u'\\');
        if (e.kind != entry_kind::file && e.kind != entry_kind::folder)
            other(nio::concatenate(path, e.leaf, u'\\'), e.kind == entry_kind::link);
        else if (!records[i].path.empty())
            e.kind == entry_kind::folder ? inner_folder(records[i], to) : file(records[i], to);
        records[i] = {};
    }
}

void tree::inner_folder(file_record const & record, wide_string const & target) {
    ++summary_.folders;
    bool const made = carrier_ && try_to(record.path, [&] { carrier_->make_folder(target); });
    if (carrier_ && !made)
        return;
    catalog_.begin_folder(record, carrier_ ? nio::leaf(target, u'\\') : wide_string());
    folder(record.path, target);
    catalog_.end_folder();
    if (!carrier_)
        return;
    carrier::losses lost = record.doubts;
    try_to(record.path, [&] { carrier_->finish_folder(record, target, lost); });
    complain(record.path, lost);
}

void tree::file(file_record const & record, wide_string const & target) {
    ++summary_.files;
    try_to(record.path, [&] { catalog_.file(record, carrier_ ? nio::leaf(target, u'\\') : wide_string()); });
    if (!carrier_) {
        progress_.add(record.data.size);
        return;
    }
    carrier::losses lost = record.doubts;
    try_to(record.path, [&] {
        bool const carried = carrier_->carry(record, target, progress_, lost);
        ++(carried ? summary_.carried : summary_.there_already);
    });
    complain(record.path, lost);
}

void tree::other(wide_string const & path, bool link) {
    ++summary_.others;
    catalog_.other(nio::leaf(path, u'\\'), link);
    if (carrier_)
        complain(path, link ? "is a link, and not carried" : "is neither file nor folder, and not carried");
}

void tree::complain(wide_string const & path, narrow_string const & words) {
    progress_.hide();
    std::cerr << "catalog: " << readable_path(platform::to_host(path)) << ' ' << words << '\n';
    ++summary_.complaints;
}

void tree::complain(wide_string const & path, std::vector<narrow_string> const & words) {
    for (auto const & line : words)
        complain(path, line);
}
