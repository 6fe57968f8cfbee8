#include "socle/stream/infinite_input.h"

#include "socle/stream/output.h"

#include <algorithm>
#include <typeinfo>

namespace stream {

namespace {

[[noreturn]] void refuse() {
    throw exception("do you really want to copy all the data I've got?", "stream::infinite_input");
}

} // namespace

infinite_input::~infinite_input() = default;

uint64 infinite_input::copy_to(output &) { refuse(); }

uint32 infinite_input::_read(char * buffer, uint32 count) {
    std::fill_n(buffer, count, '\0');
    count_ += count;
    return count;
}

int infinite_input::_read() {
    ++count_;
    return 0;
}

uint64 infinite_input::_skip(uint64 count) {
    count_ += count;
    return count;
}

uint64 infinite_input::_tell() const { return count_; }

uint64 infinite_input::_copy(output & target, uint64 count) {
    if (count == all_ones)
        refuse();
    for (uint64 i = 0; i < count; ++i)
        target.write(static_cast<char>(_read()));
    target.flush();
    return count;
}

bool infinite_input::_ours() const { return typeid(*this) == typeid(infinite_input); }

} // namespace stream
