#include "losses.h"

#include "forked_copy.h"

#include <socle/nio/exception.h>
#include <socle/platform/host.h>

namespace {

bool same_second(nio::time const & a, nio::time const & b) {
    constexpr uint64 second = 10'000'000;
    return a.file_time() / second == b.file_time() / second;
}

} // namespace

void tell_losses(file_record const & from, file_record const & made, host::refusals const & refused,
                 carrying const & how, report & report) {
    bool const in_streams = how.form == fork_form::stream;
    constexpr uint32 carried_bits = 0x127; // read-only, hidden, system, archive, temporary
    constexpr uint32 all_may = 0777;
    if (!same_finder(how.form, from, made))
        throw nio::exception("has other Finder information when it is read back");
    auto const beside = from.more ? host::belongings_of(platform::to_host(from.path)) : host::belongings();
    bool const other_owner = made.status.owner != from.status.owner || made.status.group != from.status.group;
    struct {
        bool missing;
        char const * words;
    } const lost[] = {
        {made.finder != from.finder, "has more Finder information than a sidecar can hold"},
        {!same_second(made.created, from.created), "was not given its date of creation"},
        {!same_second(made.modified, from.modified), "was not given its date of modification"},
        {((made.bits ^ from.bits) & carried_bits) != 0, "was not given all of its attributes"},
        {refused.mode || ((made.status.mode ^ from.status.mode) & all_may) != 0, "was not given its permissions"},
        {how.keep.owner && other_owner, "was not given its owner"},
        {refused.acls, "was not given its ACLs"},
        {refused.attributes, "was not given all of its extended attributes"},
    };
    for (auto const & [missing, words] : lost)
        if (missing)
            report.complain(from.path, words);
    if (!in_streams && has_streams(from))
        report.leave_out("files with other streams (--forks ntfs)");
    if (!how.keep.owner && other_owner && host::may_give_owners())
        report.leave_out("owners (--preserve=owner)");
    else if (!how.keep.owner && other_owner)
        report.leave_behind("owners, which only the superuser can give");
    if (!how.keep.acls && beside.acls)
        report.leave_out("ACLs (--preserve=acls)");
    if (!how.keep.attributes && beside.attributes)
        report.leave_out("files with extended attributes (--preserve=xattrs)");
    if (!how.hard_links && from.status.names > 1 && !from.folder())
        report.leave_out("hard links (--preserve=links)");
}
