#pragma once

#include "header.h"

#include <socle/nio/file.h>

/// A MacBinary file that is read from its start to its end, or the standard input. Failures throw an `io::exception`,
/// or a `nio::exception`.
class archive : public stream::input {
public:
    /// At the host's path; "-" is the standard input. What is neither is not opened, so that nothing is waited for.
    explicit archive(narrow_string const & path);

    narrow_string const & path() const { return path_; }
    /// What it begins with; throws if that is no good header.
    header const & head() const { return head_; }

    /// Throws if it is known to be shorter than its header says.
    void check_length();
    /// Reads all that there should be, and throws if it ends before.
    void read_to_the_end();

    /// The length of a file, all ones if it is not known.
    uint64 size() const override { return size_; }

private:
    int _read() override;
    uint32 _read(char * buffer, uint32 count) override;
    uint64 _tell() const override { return passed_; }

    [[noreturn]] void fail_short(uint64 size) const;

    narrow_string path_;
    nio::file file_;
    uint64 size_ = all_ones;
    uint64 passed_ = 0;
    header head_;
};
