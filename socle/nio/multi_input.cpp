#include "socle/nio/multi_input.h"

#include <algorithm>

namespace nio {

multi_input::~multi_input() = default;

uint32 multi_input::read(char * buffer, uint32 size) {
    uint32 done = 0;
    while (done < size && source_) {
        uint32 const wanted = size - done;
        uint32 const got = std::min(source_->read(buffer + done, wanted), wanted);
        done += got;
        position(position() + got);
        if (got < wanted)
            next();
    }
    return done;
}

} // namespace nio
