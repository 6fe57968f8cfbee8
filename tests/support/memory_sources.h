#pragma once

#include "socle/stream/input.h"

#include <algorithm>
#include <string_view>

namespace support {

/// Reads from memory in whole blocks. A class that the library does not know, so that it is asked just as its contract
/// says, and nothing is lent.
class unlent : public stream::input {
public:
    explicit unlent(std::string_view data) : data_(data) {}

    uint64 size() const override { return data_.size(); }

protected:
    uint32 _read(char * buffer, uint32 count) override {
        auto const got = static_cast<uint32>(std::min<std::size_t>(count, data_.size() - at_));
        std::copy_n(data_.data() + at_, got, buffer);
        at_ += got;
        return got;
    }
    int _read() override { return at_ < data_.size() ? static_cast<unsigned char>(data_[at_++]) : -1; }
    uint64 _tell() const override { return at_; }

private:
    std::string_view data_;
    std::size_t at_ = 0;
};

/// Reads in drops of 1, 2, 3 and 7 bytes in turn; a block read takes from one drop only.
class drops : public unlent {
public:
    using unlent::unlent;

protected:
    using unlent::_read;

    uint32 _read(char * buffer, uint32 count) override {
        static constexpr uint32 sizes[] = {1, 2, 3, 7};
        // The whole buffer is the reader's, and what did not come has no meaning.
        std::fill_n(buffer, count, '\xDD');
        return unlent::_read(buffer, std::min(count, sizes[turn_++ % 4]));
    }

private:
    unsigned turn_ = 0;
};

} // namespace support
