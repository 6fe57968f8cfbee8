#pragma once

#include "socle/stream/filter_output.h"

namespace stream {

/// Turns line ends into those of a target system. CR, LF and CR LF each count as one line end, however they are spread
/// over writes. It handles bytes and knows no encodings.
class SOCLE_API text_output : public filter_output {
public:
    /// `mode`: 0 passes everything as it is, 1 writes LF, 2 CR, 3 CR LF for a line end. Any other makes them vanish.
    text_output(output & stream, int mode);
    text_output(text_output const &) = default;
    text_output & operator=(text_output const &) = default;
    ~text_output() override;

    /// How lines end.
    int mode() const noexcept { return mode_; }

    using filter_output::write;

    /// In mode 0 writes one block to the underlying stream, otherwise each byte through `write(char)`.
    void write(char const * data, uint32 count) override;
    /// Writes one block to the underlying stream in every mode: a text is taken to be ready for the target.
    void write(narrow_string const & text) override;
    /// Writes the byte, or the line end that it completes.
    void write(char byte) override;

    /// Writes a line end, in mode 0 nothing.
    void eol();
    /// Makes a line feed that comes next count as the second half of a pair, which is dropped.
    void reset();

private:
    bool _ours() const override;

    bool wants_cr() const noexcept { return mode_ == 2 || mode_ == 3; }
    bool wants_lf() const noexcept { return mode_ == 1 || mode_ == 3; }

    int mode_;
    bool after_cr_ = false;
};

} // namespace stream
