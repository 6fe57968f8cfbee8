#pragma once

#include "socle/stream/filter_input.h"
#include "socle/stream/output.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

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

/// What a failing stream throws.
struct failure {};

/// Passes everything on, but its `n`-th call throws before it does anything; 0 for never.
class failing_source : public stream::filter_input {
public:
    failing_source(stream::input & beneath, int n) : filter_input(beneath), left_(n) {}

    void unread(char const * data, uint32 count) override {
        step();
        under().unread(data, count);
    }
    void unread(char byte) override { unread(&byte, 1); }

protected:
    uint32 _read(char * buffer, uint32 count) override {
        step();
        return filter_input::_read(buffer, count);
    }
    int _read() override {
        step();
        return filter_input::_read();
    }
    uint64 _skip(uint64 count) override {
        step();
        return filter_input::_skip(count);
    }

private:
    void step() {
        if (left_ > 0 && --left_ == 0)
            throw failure();
    }

    int left_;
};

/// Keeps what is written, and notes the size of each write; 0 stands for a single byte. The `n`-th write throws before
/// it takes anything; 0 for never.
class recording_target : public stream::output {
public:
    explicit recording_target(int n = 0) : left_(n) {}

    using stream::output::write;

    std::string data;
    std::vector<uint32> writes;
    int flushes = 0;

    void write(char byte) override {
        step();
        writes.push_back(0);
        data += byte;
    }
    void write(char const * block, uint32 count) override {
        step();
        writes.push_back(count);
        if (count > 0)
            data.append(block, count);
    }
    uint64 tell() const override { return data.size(); }
    void flush() override { ++flushes; }

private:
    void step() {
        if (left_ > 0 && --left_ == 0)
            throw failure();
    }

    int left_;
};

} // namespace support
