#pragma once

#include "carrying.h"
#include "report.h"
#include "target_folder.h"
#include "work_folder.h"

#include <map>

/// Puts files and folders into a folder of the host, with their forks in one form. Files are made in a work folder at
/// the top, some thousands at a time, brought to the disk together, and then moved into place: what has its name there
/// is whole. Nothing that is there already is changed without `update`, and nothing goes through a link.
///
/// What cannot be done for an entry throws, or is among the complaints of the report.
class carrier {
public:
    /// The folder is made if it is missing. Throws also if another carrier is at work there.
    carrier(narrow_string const & folder, carrying const & how, report & report);
    carrier(carrier const &) = delete;
    carrier & operator=(carrier const &) = delete;

    fork_form form() const { return how_.form; }
    target_pointer const & top() const { return top_; }
    /// Whether a name is kept free in the top folder: for the work, and for the streams of a volume.
    static bool is_reserved(wide_string const & leaf);

    /// Makes a copy of the file, now or with the next batch.
    void carry(file_record const & from, target_pointer const & folder, wide_string const & leaf);
    /// The folder of this name in `folder`, which is made if it is missing.
    target_pointer enter(target_pointer const & folder, wide_string const & leaf);
    /// To be called when all that is in the folder has been carried.
    void finish(file_record const & from, target_pointer const & around, wide_string const & leaf,
                target_pointer const & made);
    /// The same for the top, when all is done.
    void finish_top(file_record const & from);

private:
    struct volume {
        volume(target_folder const & top, bool attach);
        ~volume();
        bool attached;
    };
    /// A file that waits to be placed, or a folder that waits for its files.
    struct waiting {
        file_record from;
        target_pointer folder;
        wide_string leaf;
        wide_string part;
        host::status status; // of that
        bool replaces = false;
        target_pointer made;
    };
    enum class finding { free, same, older };

    bool in_streams() const { return how_.form == fork_form::stream; }

    finding find(file_record const & from, target_folder & folder, wide_string const & leaf);
    void check_free(file_record const & from, target_folder const & folder, wide_string const & leaf) const;
    bool is_fork(wide_string const & path) const;
    bool link(file_record const & from, target_pointer const & folder, wide_string const & leaf);
    /// What was made there.
    host::status make(file_record const & from, wide_string const & path);

    void flush();
    void place(waiting const & file);
    void finish_folder(waiting const & folder);
    void place_beside(waiting const & folder);
    host::refusals apply_to_folder(file_record const & from, target_folder const & made,
                                   wide_string const & path) const;
    void place_sidecars(waiting const & file, std::vector<wide_string> & placed) const;
    void move(wide_string const & from, target_folder & folder, wide_string const & leaf, bool replace) const;
    /// The names beside a file of this name that hold forks of it.
    std::vector<wide_string> sidecars_of(file_record const & from, wide_string const & name) const;

    carrying how_;
    report & report_;
    target_pointer top_;
    volume volume_;
    std::optional<work_folder> work_;
    uint64 waiting_bytes_ = 0, waiting_folders_ = 0;
    std::vector<waiting> waiting_;
    /// Where the first name of a file with several names went, by the source's identity.
    std::map<std::pair<uint64, uint64>, std::pair<target_pointer, wide_string>> first_names_;
    /// The folders that stand for one of the source.
    std::set<std::pair<uint64, uint64>> entered_;
};
