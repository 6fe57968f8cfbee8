#include "progress.h"

#include <socle/nio/exception.h>
#include <socle/nio/file.h>

#include <algorithm>
#include <iostream>

namespace {

bool errors_go_to_a_terminal() {
    nio::file errors;
    try {
        errors.open_stderr();
    } catch (nio::exception const &) {
        return false; // it is closed
    }
    return errors.console();
}

} // namespace

progress::progress(uint64 total) : total_(total), visible_(errors_go_to_a_terminal()) { show(); }

progress::~progress() { hide(); }

void progress::add(uint64 amount) {
    done_ = std::min(done_ + amount, total_);
    show();
}

void progress::hide() {
    if (visible_)
        std::cerr << "\r\x1B[K" << std::flush;
    shown_ = -1;
}

void progress::show() {
    constexpr int width = 40;
    int const percent = total_ == 0 ? 100 : static_cast<int>(double(done_) * 100 / double(total_));
    if (!visible_ || percent == shown_)
        return;
    shown_ = percent;
    auto const filled = static_cast<std::size_t>(percent * width / 100);
    std::cerr << "\r[" << narrow_string(filled, '#') << narrow_string(width - filled, '.') << "] " << percent << '%'
              << std::flush;
}
