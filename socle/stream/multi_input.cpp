#include "socle/stream/multi_input.h"

#include <algorithm>

namespace stream {

multi_input::~multi_input() = default;

uint64 multi_input::size() const { return all_ones; }

uint32 multi_input::_read(char * buffer, uint32 count) {
    uint32 done = 0;
    while (done < count && underlying()) {
        uint32 const wanted = count - done;
        uint32 const got = std::min(underlying()->read(buffer + done, wanted), wanted);
        total_ += got;
        done += got;
        if (got < wanted)
            next();
    }
    return done;
}

int multi_input::_read() {
    while (underlying()) {
        int const byte = underlying()->read();
        if (byte != -1) {
            ++total_;
            return byte;
        }
        next();
    }
    return -1;
}

uint64 multi_input::_skip(uint64 count) {
    uint64 done = 0;
    while (done < count && underlying()) {
        uint64 const wanted = count - done;
        uint64 const skipped = std::min(underlying()->skip(wanted), wanted);
        total_ += skipped;
        done += skipped;
        if (skipped < wanted)
            next();
    }
    return done;
}

uint64 multi_input::_tell() const { return total_; }

void multi_input::next() { underlying(nullptr); }

} // namespace stream
