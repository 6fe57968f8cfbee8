#pragma once

#include "socle/stream/input.h"

#include <algorithm>
#include <string_view>

namespace fuzz {

/// Reads from memory in drops of 1, 2, 3 and 7 bytes in turn; a block read takes from one drop only. A class that the
/// library does not know, so that it is asked just as its contract says, and nothing is lent.
class drops : public stream::input {
public:
    explicit drops(std::string_view data) : data_(data) {}

    uint64 size() const override { return data_.size(); }

protected:
    uint32 _read(char * buffer, uint32 count) override {
        static constexpr uint32 sizes[] = {1, 2, 3, 7};
        auto const left = std::min<std::size_t>(sizes[turn_++ % 4], data_.size() - at_);
        auto const got = std::min(count, static_cast<uint32>(left));
        // The whole buffer is the reader's, and what did not come has no meaning.
        std::fill_n(buffer, count, '\xDD');
        std::copy_n(data_.data() + at_, got, buffer);
        at_ += got;
        return got;
    }
    int _read() override { return at_ < data_.size() ? static_cast<unsigned char>(data_[at_++]) : -1; }
    uint64 _tell() const override { return at_; }

private:
    std::string_view data_;
    std::size_t at_ = 0;
    unsigned turn_ = 0;
};

/// Reads from memory in whole blocks, but as drops do, it is asked for each.
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

} // namespace fuzz
