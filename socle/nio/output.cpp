#include "socle/nio/output.h"

#include <typeinfo>

namespace nio {

output::~output() = default;

void output::begin() {}

void output::end() {}

void output::write(unsigned char byte) {
    char const data = static_cast<char>(byte);
    write(&data, 1);
}

void output::flush() {}

uint64 output::tell() const { return position_; }

bool output::seek(uint64) { return false; }

uint64 output::size() const { return position_; }

bool output::_ours() const { return false; }

std::span<char> output::_room() { return {}; }

void output::_use(uint64) {}

bool output::_apart(std::span<char const>) const { return false; }

infinite_output::~infinite_output() = default;

void infinite_output::write(char const *, uint32 size) { position(position() + size); }

bool infinite_output::seek(uint64 where) {
    position(where);
    return true;
}

bool infinite_output::_apart(std::span<char const>) const { return typeid(*this) == typeid(infinite_output); }

} // namespace nio
