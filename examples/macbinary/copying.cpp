#include "copying.h"

#include <socle/io/exception.h>
#include <socle/stream/copier.h>

#include <algorithm>

copying::copying(narrow_string const & name, uint64 total) : name_(name), progress_(total) {}

void copying::copy(stream::input & source, stream::output & target, uint64 count) {
    constexpr uint64 step = 1 << 20;
    stream::copier copier;
    for (uint64 left = count; left > 0;) {
        uint64 const wanted = std::min(left, step);
        if (copier.process(source, target, wanted) != wanted)
            throw io::exception("ended before all of it was read", name_, 0);
        left -= wanted;
        progress_.add(wanted);
    }
}
