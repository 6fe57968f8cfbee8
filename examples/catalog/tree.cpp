#include "tree.h"

#include <socle/nio/path.h>
#include <socle/platform/host.h>

#include <algorithm>
#include <numeric>
#include <tuple>
#include <utility>

namespace {

bool needs_no_other_name(entry const & e) {
    return target_names::fits(e.leaf) && !e.has_forks() && !is_fork_name(e.leaf) && !carrier::is_reserved(e.leaf);
}

} // namespace

tree::tree(narrow_string const & typed, wide_string const & root, std::function<bool()> attach,
           selection const & selection, catalogue * catalogue, carrier * carrier, report & report)
    : typed_(typed), root_(root), attach_(std::move(attach)), selection_(selection), catalogue_(catalogue),
      carrier_(carrier), report_(report) {}

void tree::walk() {
    auto const host_root = platform::to_host(root_);
    if (report_.bar().visible()) {
        report_.attempt(root_, [&] { look_ahead(host::folder(host_root, true), root_); });
        report_.bar().expect();
    }
    entry top;
    top.leaf = nio::leaf(root_, u'\\');
    top.status = host::folder(host_root, true).status();
    top.more = host::has_more(host_root);
    if (top.more)
        attach();
    auto const record = look_at(nio::stem(root_, u'\\'), top);
    if (catalogue_)
        catalogue_->begin(typed_, record);
    folder(root_, carrier_ ? carrier_->top() : nullptr);
    if (catalogue_)
        catalogue_->end();
    if (carrier_)
        report_.attempt(root_, [&] { carrier_->finish_top(record); });
}

void tree::look_ahead(host::folder const & folder, wide_string const & path) {
    for (auto const & [name, status] : folder.list()) {
        bool const inner = status.kind == host::kind::folder;
        wide_string const below = nio::concatenate(path, platform::from_host(name), u'\\');
        if (!counts(below, inner))
            continue;
        report_.bar().found(inner ? 0 : status.size);
        try {
            if (inner)
                look_ahead(folder.inner(name), below);
        } catch (std::exception const &) {
            // The walk itself complains.
        }
    }
}

std::vector<entry> tree::entries_of(wide_string const & path) {
    std::vector<entry> entries;
    report_.attempt(path, [&] { entries = list_folder(host::folder(platform::to_host(path), path == root_), path); });
    if (std::any_of(entries.begin(), entries.end(), [](entry const & e) { return e.more; }))
        attach();
    if (path == root_ && streams_)
        std::erase_if(entries, [](entry const & e) { return e.leaf == u".socle_streams"; });
    std::erase_if(entries, [&](entry const & e) {
        bool const out = !counts(nio::concatenate(path, e.leaf, u'\\'), e.folder());
        report_.skipped += out ? 1 : 0;
        return out;
    });
    return entries;
}

void tree::attach() {
    if (auto const once = std::exchange(attach_, nullptr))
        streams_ = once();
}

/// The names of the entries in the target, in the order of the entries; none at all if each keeps its own.
std::vector<wide_string> tree::names_for(wide_string const & path, std::vector<entry> const & entries) const {
    if (std::all_of(entries.begin(), entries.end(), needs_no_other_name))
        return {};
    std::vector<wide_string> result(entries.size());
    std::set<wide_string> present, reserved;
    for (auto const & e : entries) {
        present.insert(e.leaf);
        for (auto const & [fork, name] : {std::pair(e.rsrc, rsrc_leaf(e.leaf)), std::pair(e.info, info_leaf(e.leaf)),
                                          std::pair(e.twin, u"._" + e.leaf)})
            if (fork)
                present.insert(name);
        if (path == root_ && carrier::is_reserved(e.leaf))
            reserved.insert(e.leaf);
    }
    target_names names(carrier_->form(), present, reserved);
    // Names that can be kept come first, and an owner comes before what has the name of one of its forks.
    std::vector<std::size_t> order(entries.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    auto const rank = [&](std::size_t i) {
        auto const & leaf = entries[i].leaf;
        return std::make_tuple(!target_names::fits(leaf), leaf.size(), std::cref(leaf));
    };
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return rank(a) < rank(b); });
    for (auto const i : order) {
        auto const & e = entries[i];
        if (!e.file() && !e.folder())
            continue;
        auto const record = e.has_forks() ? look_at(path, e) : file_record();
        result[i] = names.assign(e.leaf, record.resource.size > 0, record.has_finder());
    }
    return result;
}

void tree::folder(wide_string const & path, target_pointer const & target) {
    auto const entries = entries_of(path);
    auto const names = target ? names_for(path, entries) : std::vector<wide_string>();
    for (std::size_t i = 0; i < entries.size(); ++i) {
        auto const & e = entries[i];
        auto const & leaf = names.empty() ? e.leaf : names[i];
        auto const whole = nio::concatenate(path, e.leaf, u'\\');
        report_.bar().begin(report_.bar().visible() ? report_.name(whole) : narrow_string());
        if (!e.file() && !e.folder()) {
            other(whole, e.status.kind == host::kind::link);
            continue;
        }
        if (leaf != e.leaf)
            report_.change_name();
        auto const record = look_at(path, e);
        e.folder() ? inner_folder(record, leaf, target) : file(record, leaf, target);
    }
}

void tree::inner_folder(file_record const & record, wide_string const & leaf, target_pointer const & around) {
    ++report_.folders;
    target_pointer made;
    if (around)
        report_.attempt(record.path, [&] { made = carrier_->enter(around, leaf); });
    else if (carrier_)
        report_.leave_out("folders within folders that could not be made");
    if (catalogue_)
        catalogue_->begin_folder(record, made ? leaf : wide_string());
    folder(record.path, made);
    if (catalogue_)
        catalogue_->end_folder();
    if (!made)
        return tell_unclear(record);
    tell(record);
    report_.attempt(record.path, [&] { carrier_->finish(record, around, leaf, made); });
}

void tree::file(file_record const & record, wide_string const & leaf, target_pointer const & target) {
    ++report_.files;
    if (catalogue_)
        report_.attempt(record.path, [&] { catalogue_->file(record, target ? leaf : wide_string()); });
    if (!carrier_) {
        tell_unclear(record);
        report_.bar().add(record.data.size);
        return;
    }
    if (!target) {
        report_.leave_out("files in folders that could not be made");
        return;
    }
    tell(record);
    report_.attempt(record.path, [&] { carrier_->carry(record, target, leaf); });
}

void tree::other(wide_string const & path, bool link) {
    ++report_.others;
    if (catalogue_)
        catalogue_->other(nio::leaf(path, u'\\'), link);
    if (carrier_)
        report_.complain(path, link ? "is a link, and not carried" : "is neither file nor folder, and not carried");
}

bool tree::counts(wide_string const & path, bool folder) const {
    auto const at = path.find_first_not_of(u'\\', root_.size());
    return selection_.counts(path.substr(std::min(at, path.size())), folder);
}

/// What may have more than could be read is complained of where nothing is carried, too.
void tree::tell_unclear(file_record const & record) {
    if (record.unclear)
        tell(record);
}

void tree::tell(file_record const & record) {
    for (auto const & doubt : record.doubts)
        report_.complain(record.path, doubt);
}
