#pragma once

#include <socle/basic/types.h>

/// A bar on the terminal that errors are shown on, for as long as this lives. Where there is no terminal it shows
/// nothing.
class progress {
public:
    /// `total` is what all the work comes to, in any unit.
    explicit progress(uint64 total);
    progress(progress const &) = delete;
    progress & operator=(progress const &) = delete;
    ~progress();

    /// `amount` more is done.
    void add(uint64 amount);

    /// Takes the bar away until the next `add`, so that a line can be shown in its place.
    void hide();

private:
    void show();

    uint64 total_;
    uint64 done_ = 0;
    bool visible_;
    int shown_ = -1;
};
