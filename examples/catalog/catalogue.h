#pragma once

#include "file_record.h"

#include <socle/stream/output.h>

#include <memory>
#include <utility>

/// How a catalogue is put down: the entries are objects with fields, some of which have fields of their own.
class notation {
public:
    using fields = std::vector<std::pair<narrow_string, narrow_string>>;

    notation() = default;
    notation(notation const &) = delete;
    notation & operator=(notation const &) = delete;
    virtual ~notation();

    virtual void begin() = 0;
    virtual void end() = 0;
    /// Begins an entry of a kind, which is in the entry that has begun before. Names are shown as they are given.
    virtual void begin_entry(narrow_string const & kind, fields const & named) = 0;
    virtual void end_entry(narrow_string const & kind) = 0;
    /// What a folder holds follows.
    virtual void begin_contents() = 0;
    virtual void end_contents() = 0;
    virtual void field(narrow_string const & name, narrow_string const & value) = 0;
    /// Values of digits, "true" and "false" are no text.
    virtual void group(narrow_string const & name, fields const & values) = 0;
    virtual void notes(std::vector<narrow_string> const & notes) = 0;
};

std::unique_ptr<notation> xml_notation(stream::output & target);
std::unique_ptr<notation> json_notation(stream::output & target);

/// The catalogue, written as it grows.
class catalogue {
public:
    /// With `checksums` every fork is read for its CRC-32.
    catalogue(notation & target, bool checksums) : out_(target), checksums_(checksums) {}

    /// `typed` is what the user calls the folder that is walked.
    void begin(narrow_string const & typed, file_record const & top);
    void end();

    /// `as` is the name that the entry is carried under; empty, or the same as its own, if there is nothing to say.
    void begin_folder(file_record const & folder, wide_string const & as);
    void end_folder();
    /// Throws what reading for a checksum throws; the entry is whole all the same.
    void file(file_record const & file, wide_string const & as);
    /// A link, or what is neither file nor folder.
    void other(wide_string const & leaf, bool link);

private:
    void open(narrow_string const & kind, wide_string const & leaf, wide_string const & as);
    void facts(file_record const & record);
    void fork(narrow_string const & name, extent const & bytes, narrow_string const & sum);
    narrow_string sum_of(extent const & bytes) const;

    notation & out_;
    bool checksums_;
};
