#pragma once

#include <socle/basic/types.h>

#include <chrono>

/// A line on the terminal that errors are shown on, for as long as this lives: what a first look has found, then a bar
/// with the rate, the time left and the file at work. Where there is no terminal it shows nothing.
class progress {
public:
    progress();
    /// With what all the work comes to, as `expect` has it.
    explicit progress(uint64 total);
    progress(progress const &) = delete;
    progress & operator=(progress const &) = delete;
    ~progress();

    /// Whether anything is shown, so that a first look is worth it.
    bool visible() const { return visible_; }

    /// A first look has come to one more entry, with so many bytes to work on.
    void found(uint64 bytes);
    /// All that is found, or `total` bytes, is what there is to do.
    void expect();
    void expect(uint64 total);

    /// The work has come to this entry, in words that may be shown.
    void begin(narrow_string const & name);
    /// So many more bytes are done.
    void add(uint64 bytes);

    /// Takes the line away until there is more to show, so that another can stand in its place.
    void hide();

private:
    using clock = std::chrono::steady_clock;

    bool due() const;
    void show(narrow_string const & line);
    void show_bar();
    double done() const;

    bool visible_;
    bool shown_ = false;
    uint64 entries_ = 0, entries_done_ = 0;
    uint64 bytes_ = 0, bytes_done_ = 0;
    narrow_string name_;
    clock::time_point begun_ = clock::now(), drawn_{};
};
