#include "copying.h"

#include "io/exception.h"
#include "stream/copier.h"

#include <algorithm>
#include <iostream>

namespace {

bool errors_go_to_a_terminal() {
    io::file errors;
    auto & fork = errors.data_fork();
    try {
        fork.open_stderr();
    } catch (io::exception const &) {
        return false; // it is closed
    }
    closing const at_end(fork);
    return fork.console();
}

} // namespace

copying::copying(narrow_string const & name, uint64 total)
    : name_(name), total_(total), visible_(errors_go_to_a_terminal()) {
    show();
}

copying::~copying() {
    if (visible_)
        std::cerr << "\r\x1B[K" << std::flush;
}

void copying::copy(stream::input & source, stream::output & target, uint64 count) {
    constexpr uint64 step = 1 << 20;
    stream::copier copier;
    for (uint64 left = count; left > 0;) {
        uint64 const wanted = std::min(left, step);
        if (copier.process(source, target, wanted) != wanted)
            throw io::exception("ended before all of it was read", name_, 0);
        left -= wanted;
        done_ += wanted;
        show();
    }
}

void copying::show() {
    constexpr int width = 40;
    int const percent = total_ == 0 ? 100 : static_cast<int>(done_ * 100 / total_);
    if (!visible_ || percent == shown_)
        return;
    shown_ = percent;
    auto const filled = static_cast<std::size_t>(percent * width / 100);
    std::cerr << "\r[" << narrow_string(filled, '#') << narrow_string(width - filled, '.') << "] " << percent << '%'
              << std::flush;
}
