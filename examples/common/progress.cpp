#include "progress.h"

#include "host.h"

#include <socle/nio/exception.h>
#include <socle/nio/file.h>
#include <socle/un/digits.h>

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

narrow_string time_text(double seconds) {
    auto const whole = static_cast<uint64>(seconds + 0.5);
    return std::to_string(whole / 60) + ':' + un::write(whole % 60, 10, 2);
}

narrow_string rate_text(double bytes) {
    static constexpr char const * units[] = {" B/s", " kB/s", " MB/s", " GB/s"};
    std::size_t unit = 0;
    for (; bytes >= 1000 && unit < 3; ++unit)
        bytes /= 1000;
    return std::to_string(static_cast<uint64>(bytes)) + units[unit];
}

/// At most so many columns; each character of the text counts as one.
narrow_string cut(narrow_string const & text, std::size_t columns) {
    auto const continues = [&](std::size_t at) { return (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80; };
    std::size_t at = 0;
    for (; at < text.size() && (columns > 0 || continues(at)); ++at)
        columns -= continues(at) ? 0 : 1;
    return text.substr(0, at);
}

} // namespace

progress::progress() : visible_(errors_go_to_a_terminal()) {}

progress::progress(uint64 total) : progress() { expect(total); }

progress::~progress() { hide(); }

void progress::found(uint64 bytes) {
    ++entries_;
    bytes_ += bytes;
    if (due())
        show("looking: " + std::to_string(entries_) + " found, " + std::to_string(bytes_ / 1'000'000) + " MB");
}

void progress::expect() {
    begun_ = clock::now();
    drawn_ = {};
    if (visible_)
        show_bar();
}

void progress::expect(uint64 total) {
    bytes_ = total;
    expect();
}

void progress::begin(narrow_string const & name) {
    ++entries_done_;
    if (!visible_)
        return;
    name_ = name;
    add(0);
}

void progress::add(uint64 bytes) {
    bytes_done_ = std::min(bytes_done_ + bytes, bytes_);
    if (due() || (visible_ && bytes > 0 && bytes_done_ == bytes_))
        show_bar();
}

void progress::hide() {
    if (shown_)
        std::cerr << "\r\x1B[K" << std::flush;
    shown_ = false;
}

bool progress::due() const {
    using namespace std::chrono_literals;
    return visible_ && clock::now() - drawn_ >= 100ms;
}

void progress::show(narrow_string const & line) {
    std::cerr << "\r\x1B[K" << cut(line, host::terminal_width() - 1) << std::flush;
    shown_ = true;
    drawn_ = clock::now();
}

/// An entry counts as much as this many bytes.
double progress::done() const {
    constexpr double weight = 4096;
    auto const all = double(bytes_) + double(entries_) * weight;
    auto const entries = double(std::min(entries_done_, entries_));
    return all == 0 ? 1 : (double(bytes_done_) + entries * weight) / all;
}

void progress::show_bar() {
    auto const part = std::min(done(), 1.0);
    auto const width = std::min<std::size_t>(host::terminal_width() / 3, 40);
    auto const filled = static_cast<std::size_t>(part * double(width));
    std::chrono::duration<double> const spent = clock::now() - begun_;
    narrow_string line = '[' + narrow_string(filled, '#') + narrow_string(width - filled, '.') + "] "
                         + std::to_string(static_cast<int>(part * 100)) + '%';
    if (spent.count() >= 1 && part > 0) {
        line += ' ' + rate_text(double(bytes_done_) / spent.count()) + ' '
                + time_text(spent.count() * (1 - part) / part) + " left";
    }
    show(line + ' ' + name_);
}
