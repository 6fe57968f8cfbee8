#include "socle/stream/direct_input.h"

#include "socle/nio/lending_internal.h"

#include <typeinfo>

namespace stream {

direct_input::direct_input(input & stream) : filter_input(stream) {}

direct_input::~direct_input() = default;

void direct_input::unread(char const * data, uint32 count) { under().unread(data, count); }

void direct_input::unread(char byte) { under().unread(byte); }

std::span<char const> direct_input::_lend() {
    return nio::lending::ours(*this) ? _lend_beneath() : std::span<char const>();
}

void direct_input::_take(uint64 count) { _take_beneath(count); }

bool direct_input::_ours() const { return typeid(*this) == typeid(direct_input); }

} // namespace stream
