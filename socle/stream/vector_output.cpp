#include "socle/stream/vector_output.h"

#include "socle/stream/input.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <typeinfo>

namespace stream {

namespace {

[[noreturn]] void fail(char const * message) { throw exception(message, "stream::vector_output"); }

/// Whether a block begins in the memory of `vector`.
bool inside(byte_vector const & vector, char const * data) {
    std::less<char const *> const before;
    auto const * const first = reinterpret_cast<char const *>(vector.data());
    return !before(data, first) && before(data, first + vector.size());
}

/// `size` for a vector: one that memory cannot have is as much too large as ever, so that the vector refuses it.
std::size_t in_memory(uint64 size) { return static_cast<std::size_t>(std::min<uint64>(size, SIZE_MAX)); }

} // namespace

vector_output::vector_output(byte_vector & vector, uint32 start) : vector_(vector), index_(start) {}

vector_output::~vector_output() = default;

void vector_output::write(char byte) {
    auto const value = static_cast<unsigned char>(byte);
    if (index_ < vector_.size())
        vector_[in_memory(index_)] = value;
    else
        vector_.push_back(value);
    ++index_;
}

void vector_output::write(char const * data, uint32 count) {
    if (count == 0)
        return;
    if (index_ + count > vector_.size()) {
        // A block inside the vector moves with it.
        bool const own = inside(vector_, data);
        auto const offset = own ? data - reinterpret_cast<char const *>(vector_.data()) : 0;
        vector_.resize(in_memory(index_ + count));
        if (own)
            data = reinterpret_cast<char const *>(vector_.data()) + offset;
    }
    std::memmove(vector_.data() + index_, data, count);
    index_ += count;
}

uint64 vector_output::tell() const { return index_; }

void vector_output::copy_from(input & source) {
    uint64 const size = source.size();
    uint64 const end = std::max<uint64>(vector_.size(), index_);
    if (end > UINT32_MAX || size > UINT32_MAX - end)
        fail("input stream is too large to copy into the vector");
    if (size == 0)
        return;
    vector_.resize(in_memory(end + size));
    auto const wanted = static_cast<uint32>(size);
    index_ += std::min(source.read(reinterpret_cast<char *>(vector_.data()) + index_, wanted), wanted);
}

void vector_output::resize(uint64 new_size) {
    if (new_size < size())
        fail("I do not truncate the stream");
    if (new_size > size())
        vector_.resize(in_memory(new_size));
}

bool vector_output::_apart(std::span<char const> data) const { return _ours() && !inside(vector_, data.data()); }

bool vector_output::_ours() const { return typeid(*this) == typeid(vector_output); }

std::span<char> vector_output::_room() {
    if (index_ >= vector_.size() || !_ours())
        return {};
    auto const index = in_memory(index_);
    return {reinterpret_cast<char *>(vector_.data()) + index, vector_.size() - index};
}

void vector_output::_use(uint64 count) { index_ += count; }

} // namespace stream
