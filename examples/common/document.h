#pragma once

#include <socle/nio/file.h>
#include <socle/stream/output.h>

/// What a program puts out: on its standard output, or into a file, which is there, in place of an earlier one, when
/// all of it is. Failures throw a `nio::exception`.
class document : public stream::output {
public:
    document();
    /// Into a file at the host's path; "-" is the standard output.
    explicit document(narrow_string const & path);
    ~document() override;

    using stream::output::write;

    void write(char byte) override;
    void write(char const * data, uint32 count) override;
    void flush() override;
    /// The count of bytes so far.
    uint64 tell() const override { return passed_ + held_.size(); }

    /// All is written; without this, no file is made.
    void finish();

private:
    nio::file file_;
    narrow_string path_, part_;
    narrow_string held_;
    uint64 passed_ = 0;
};
