#include "socle/nio/input.h"

#include <algorithm>

namespace nio {

input::~input() = default;

void input::begin() {}

void input::end() {}

uint64 input::read(std::span<char> block) {
    uint64 done = 0;
    for (uint32 count = 0, got = 0; got == count && done < block.size(); done += got) {
        count = static_cast<uint32>(std::min<uint64>(block.size() - done, UINT32_MAX));
        got = read(block.data() + done, count);
    }
    return done;
}

uint64 input::read(std::span<unsigned char> block) {
    return read(std::span(reinterpret_cast<char *>(block.data()), block.size()));
}

uint64 input::tell() const { return position_; }

bool input::seek(uint64) { return false; }

uint64 input::size() const { return all_ones; }

bool input::_ours() const { return false; }

std::span<char const> input::_lend() { return {}; }

void input::_take(uint64) {}

infinite_input::infinite_input(char fill) : fill_(fill) {}

infinite_input::~infinite_input() = default;

uint32 infinite_input::read(char * buffer, uint32 size) {
    std::fill_n(buffer, size, fill_);
    position(position() + size);
    return size;
}

bool infinite_input::seek(uint64 where) {
    position(where);
    return true;
}

} // namespace nio
