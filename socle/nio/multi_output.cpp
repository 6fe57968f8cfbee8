#include "socle/nio/multi_output.h"

#include "socle/nio/exception.h"

namespace nio {

multi_output::~multi_output() = default;

void multi_output::write(char const * data, uint32 size) {
    while (size > room()) {
        auto const fitting = static_cast<uint32>(room());
        put(data, fitting);
        data += fitting;
        size -= fitting;
        advance();
    }
    put(data, size);
}

void multi_output::put(char const * data, uint32 size) {
    if (!target_)
        return;
    target_->write(data, size);
    position(position() + size);
    written_ += size;
}

/// Goes to the next target. A series that has ended is not asked again.
void multi_output::advance() {
    if (target_ || !finished_)
        next();
    finished_ = !target_;
    if (finished_)
        throw exception("multi_output has run out of files to write");
    written_ = 0;
}

} // namespace nio
