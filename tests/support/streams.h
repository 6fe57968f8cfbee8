#pragma once

#include "socle/stream/filter_output.h"
#include "tests/support/memory_sources.h"
#include "tests/support/raised.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <deque>
#include <string>
#include <type_traits>
#include <vector>

/// Streams that the tests lean on. All of them are a caller's own classes, so that the library may not take a short way
/// around their operations.
namespace support {

/// Numbers in the machine's own order go through a stream in one block, those in the other byte by byte.
constexpr bool big_machine = std::endian::native == std::endian::big;
template <class Big, class Little>
using in_bytes = std::conditional_t<big_machine, Little, Big>;

inline byte_vector bytes(std::string const & text) { return {text.begin(), text.end()}; }

inline std::string text(byte_vector const & data) { return {data.begin(), data.end()}; }

/// `count` bytes in which every place can be told from its neighbours.
inline byte_vector pattern(std::size_t count) {
    byte_vector data(count);
    for (std::size_t i = 0; i < count; ++i)
        data[i] = static_cast<unsigned char>(i * 7 + i / 251);
    return data;
}

/// The `stream::exception` that a call throws.
std::string raised(auto && call) { return raised_as<stream::exception>(call); }

/// Reads to the end with single bytes.
inline std::string rest(stream::input & source) {
    std::string all;
    for (int byte = source.read(); byte != -1; byte = source.read())
        all += static_cast<char>(byte);
    return all;
}

/// Hands out the given fragments, one block read at most one of them; then the end. It notes what it is asked for, and
/// spoils the rest of the caller's buffer, so that a caller who takes more than came is seen, and one whose buffer is
/// smaller than it says.
class fragment_source : public stream::input {
public:
    explicit fragment_source(std::vector<std::string> const & fragments) {
        for (auto const & fragment : fragments) {
            data_ += fragment;
            ends_.push_back(data_.size());
        }
    }

    /// The block sizes asked for; 0 stands for a single byte.
    std::vector<uint32> asked;

    uint64 size() const override { return data_.size(); }

protected:
    uint32 _read(char * buffer, uint32 count) override {
        EXPECT_TRUE(buffer != nullptr || count == 0);
        asked.push_back(count);
        if (count > 0)
            std::memset(buffer, 0xDD, count);
        std::string const piece = take(count);
        std::copy(piece.begin(), piece.end(), buffer);
        return static_cast<uint32>(piece.size());
    }
    int _read() override {
        asked.push_back(0);
        std::string const piece = take(1);
        return piece.empty() ? -1 : static_cast<unsigned char>(piece[0]);
    }
    uint64 _tell() const override { return given_; }

private:
    std::string take(uint32 count) {
        auto const end = std::upper_bound(ends_.begin(), ends_.end(), given_);
        auto const piece = data_.substr(given_, end == ends_.end() ? 0 : std::min<std::size_t>(count, *end - given_));
        given_ += piece.size();
        return piece;
    }

    std::string data_;
    std::vector<std::size_t> ends_;
    std::size_t given_ = 0;
};

/// What each target has, behind each a bar.
inline std::string joined(std::deque<recording_target> const & targets) {
    std::string all;
    for (auto const & target : targets)
        all += target.data + "|";
    return all;
}

/// `size` bytes of 0 without memory.
class huge_source : public stream::input {
public:
    explicit huge_source(uint64 size = uint64(5) << 30) : size_(size) {}

    uint64 size() const override { return size_; }

protected:
    uint32 _read(char * buffer, uint32 count) override {
        auto const got = static_cast<uint32>(_skip(count));
        std::fill_n(buffer, got, '\0');
        return got;
    }
    int _read() override { return _skip(1) == 1 ? 0 : -1; }
    uint64 _skip(uint64 count) override {
        uint64 const skipped = std::min(count, size_ - place_);
        place_ += skipped;
        return skipped;
    }
    uint64 _tell() const override { return place_; }

private:
    uint64 size_;
    uint64 place_ = 0;
};

/// Claims to have read, or skipped, more than it was asked for.
class lying_source : public stream::input {
public:
    uint64 size() const override { return 8; }

protected:
    uint32 _read(char * buffer, uint32 count) override {
        std::fill_n(buffer, count, 'l');
        return ++told_ < 5 ? count + 1000 : 0;
    }
    int _read() override { return told_ < 5 ? 'l' : -1; }
    uint64 _skip(uint64 count) override { return count + 1000; }
    uint64 _tell() const override { return 0; }

private:
    int told_ = 0;
};

} // namespace support
