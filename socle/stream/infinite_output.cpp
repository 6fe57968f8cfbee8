#include "socle/stream/infinite_output.h"

#include "socle/stream/lending_internal.h"

#include <typeinfo>

namespace stream {

infinite_output::~infinite_output() = default;

void infinite_output::write(char const *, uint32 count) { count_ += count; }

uint64 infinite_output::tell() const { return count_; }

void infinite_output::write(char) { ++count_; }

void infinite_output::copy_from(input & source) {
    for (;;)
        if (auto const held = lending::bytes(source); !held.empty())
            lending::take(source, held.size());
        else if (source.read() == -1)
            return;
}

void infinite_output::resize(uint64) {}

bool infinite_output::_apart(std::span<char const>) const { return _ours(); }

bool infinite_output::_ours() const { return typeid(*this) == typeid(infinite_output); }

} // namespace stream
