#include "socle/stream/multi_output.h"

namespace stream {

multi_output::~multi_output() = default;

void multi_output::write(char const * data, uint32 count) {
    while (count > room()) {
        if (auto const fitting = static_cast<uint32>(room()); fitting > 0) {
            put(data, fitting);
            data += fitting;
            count -= fitting;
        }
        advance();
    }
    if (count > 0)
        put(data, count);
}

void multi_output::write(char byte) {
    while (room() == 0)
        advance();
    underlying()->write(byte);
    ++total_;
    ++written_;
}

uint64 multi_output::tell() const { return total_; }

uint64 multi_output::size() const { return all_ones; }

void multi_output::under(output & stream) {
    filter_output::under(stream);
    written_ = 0;
}

void multi_output::next() { underlying(nullptr); }

/// Goes to the next target. A series that has ended is not asked again; one that failed is.
void multi_output::advance() {
    uint64 const written = written_;
    try {
        if (underlying() || !finished_)
            next();
    } catch (...) {
        written_ = written;
        throw;
    }
    finished_ = !underlying();
    if (finished_)
        throw exception("I have run out of files to write", "stream::multi_output");
    written_ = 0;
}

void multi_output::put(char const * data, uint32 count) {
    underlying()->write(data, count);
    total_ += count;
    written_ += count;
}

} // namespace stream
