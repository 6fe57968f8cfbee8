#include "socle/nio/output.h"

#include "socle/nio/in_blocks_internal.h"

#include <typeinfo>

namespace nio {

output::~output() = default;

void output::begin() {}

void output::end() {}

void output::write(unsigned char byte) {
    char const data = static_cast<char>(byte);
    write(&data, 1);
}

void output::write(std::string_view block) {
    in_blocks(block.data(), block.size(), [this](char const * data, uint32 count) { write(data, count); });
}

void output::write(std::span<unsigned char const> block) {
    write(std::string_view(reinterpret_cast<char const *>(block.data()), block.size()));
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
