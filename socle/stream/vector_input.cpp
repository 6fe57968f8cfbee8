#include "socle/stream/vector_input.h"

#include "socle/nio/in_blocks_internal.h"
#include "socle/nio/lending_internal.h"
#include "socle/stream/copy_in_order_internal.h"
#include "socle/stream/output.h"

#include <algorithm>
#include <typeinfo>

namespace stream {

vector_input::vector_input(byte_vector const & vector, uint32 start) : vector_(vector), index_(start) {}

vector_input::~vector_input() = default;

uint64 vector_input::size() const { return vector_.size(); }

uint32 vector_input::_read(char * buffer, uint32 count) {
    auto const here = rest();
    auto const got = static_cast<uint32>(std::min<uint64>(count, here.size()));
    copy_in_order(buffer, here.data(), got);
    index_ += got;
    return got;
}

int vector_input::_read() { return index_ < vector_.size() ? vector_[static_cast<std::size_t>(index_++)] : -1; }

uint64 vector_input::_skip(uint64 count) {
    if (count > UINT32_MAX)
        throw exception("cannot skip more than the maximum vector size", "stream::vector_input");
    uint64 const skipped = std::min<uint64>(count, rest().size());
    index_ += skipped;
    return skipped;
}

uint64 vector_input::_copy_to(output & target) {
    auto here = rest();
    std::vector<char> copy;
    if (!nio::lending::apart(target, here)) {
        // The target may change this very vector while it writes.
        copy.assign(here.begin(), here.end());
        here = copy;
    }
    nio::in_blocks(here.data(), here.size(), [&](char const * data, uint32 count) { target.write(data, count); });
    return here.size();
}

uint64 vector_input::_tell() const { return index_; }

bool vector_input::_ours() const { return typeid(*this) == typeid(vector_input); }

std::span<char const> vector_input::_lend() {
    if (!_ours())
        return {};
    auto const given_back = input::_lend();
    return given_back.empty() ? rest() : given_back;
}

void vector_input::_take(uint64 count) {
    if (input::_lend().empty())
        index_ += count;
    else
        input::_take(count);
}

std::span<char const> vector_input::rest() const {
    if (index_ >= vector_.size())
        return {};
    auto const index = static_cast<std::size_t>(index_);
    return {reinterpret_cast<char const *>(vector_.data()) + index, vector_.size() - index};
}

} // namespace stream
