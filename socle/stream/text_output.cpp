#include "socle/stream/text_output.h"

#include "socle/nio/in_blocks_internal.h"

#include <typeinfo>

namespace stream {

text_output::text_output(output & stream, int mode) : filter_output(stream), mode_(mode) {}

text_output::~text_output() = default;

void text_output::write(char const * data, uint32 count) {
    if (mode_ == 0) {
        filter_output::write(data, count);
        return;
    }
    for (uint32 i = 0; i < count; ++i)
        write(data[i]);
}

void text_output::write(narrow_string const & text) {
    nio::in_blocks(text.data(), text.size(), [this](char const * data, uint32 count) { beneath().write(data, count); });
}

void text_output::write(char byte) {
    if (mode_ == 0) {
        filter_output::write(byte);
        return;
    }
    if (byte == '\r') {
        eol();
        after_cr_ = true;
    } else if (byte != '\n') {
        filter_output::write(byte);
        after_cr_ = false;
    } else if (after_cr_) {
        after_cr_ = false;
    } else {
        eol();
    }
}

void text_output::eol() {
    if (wants_cr())
        filter_output::write('\r');
    if (wants_lf())
        filter_output::write('\n');
}

void text_output::reset() { after_cr_ = true; }

bool text_output::_ours() const { return typeid(*this) == typeid(text_output); }

} // namespace stream
