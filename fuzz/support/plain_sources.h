#pragma once

#include "fuzz/support/chains.h"
#include "socle/stream/array_input.h"
#include "socle/stream/buffered_input.h"
#include "socle/stream/copier.h"
#include "socle/stream/counted_input.h"
#include "socle/stream/endian_input.h"
#include "socle/stream/limited_input.h"
#include "socle/stream/line_input.h"
#include "socle/stream/multi_input.h"
#include "socle/stream/random/input.h"
#include "socle/stream/safe_input.h"
#include "socle/stream/vector_input.h"

#include <bit>

/// The sources of the library, as their contracts tell them.
namespace fuzz {

template <>
class plain<stream::input> : public stream::input {
public:
    using input::read;
    uint32 read(char * buffer, uint32 count) override {
        auto const given = give(count);
        std::copy(given.begin(), given.end(), buffer);
        auto const done = static_cast<uint32>(given.size());
        if (!held_.empty() || (done > 0 && done == count))
            return done;
        return done + std::min(_read(buffer + done, count - done), count - done);
    }
    int read() override {
        auto const given = give(1);
        return given.empty() ? _read() : static_cast<unsigned char>(given[0]);
    }
    uint64 tell() const override { return held_.empty() ? _tell() : held_at_; }
    void unread(char const * data, uint32 count) override {
        if (refuses<stream::exception>([&] {
                if (!seek(_tell() - count))
                    throw stream::exception("", "");
            })) {
            held_at_ = tell() - count;
            held_.insert(0, data, count);
        }
    }
    void unread(char byte) override { unread(&byte, 1); }
    uint64 skip(uint64 count) override {
        uint64 const done = give(count).size();
        if (!held_.empty() || (done > 0 && done == count))
            return done;
        return done + std::min(_skip(count - done), count - done);
    }
    uint64 copy_to(stream::output & target) override {
        auto const held = held_;
        if (!held.empty())
            target.write(held.data(), static_cast<uint32>(held.size()));
        held_.clear();
        return held.size() + _copy_to(target);
    }

protected:
    uint32 _read(char * buffer, uint32 count) override {
        uint32 done = 0;
        for (int byte = 0; done < count && (byte = read()) != -1; ++done)
            buffer[done] = static_cast<char>(byte);
        return done;
    }
    int _read() override = 0;
    uint64 _skip(uint64 count) override {
        narrow_string block(65536, '\0');
        uint64 total = 0;
        for (uint32 got = 1; got > 0 && total < count; total += got) {
            auto const wanted = static_cast<uint32>(std::min<uint64>(count - total, 65536));
            got = std::min(read(block.data(), wanted), wanted);
        }
        return total;
    }
    uint64 _copy_to(stream::output & target) override {
        narrow_string block(65536, '\0');
        for (uint64 total = 0;;) {
            auto const got = std::min(read(block.data(), 65536), uint32(65536));
            if (got == 0)
                return total;
            target.write(block.data(), got);
            total += got;
        }
    }

private:
    narrow_string give(uint64 most) {
        auto const given = held_.substr(0, static_cast<std::size_t>(std::min<uint64>(most, held_.size())));
        held_.erase(0, given.size());
        held_at_ += given.size();
        return given;
    }

    narrow_string held_;
    uint64 held_at_ = 0;
};

using plain_input = plain<stream::input>;

template <>
class plain<stream::random::input> : public plain_input {
public:
    using plain_input::unread;
    void unread(char const *, uint32 count) override {
        if (count > tell())
            throw stream::exception("cannot unread past the start", "stream::random::input");
        seek(tell() - count);
    }
    uint64 skip(uint64 count) override {
        uint64 const left = size() - std::min(size(), tell()), passed = std::min(count, left);
        seek(tell() + passed);
        return passed;
    }
};

class plain_memory : public plain_input {
public:
    plain_memory(std::string_view data, uint32 start) : data_(data), at_(start) {}
    uint64 size() const override { return data_.size(); }

protected:
    uint32 _read(char * buffer, uint32 count) override { return static_cast<uint32>(pass(left().copy(buffer, count))); }
    int _read() override { return left().empty() ? -1 : static_cast<unsigned char>(data_[at_++]); }
    uint64 _tell() const override { return at_; }

    std::string_view left() const { return data_.substr(std::min(at_, data_.size())); }
    uint64 pass_most(uint64 count, char const * words, char const * origin) {
        if (count > UINT32_MAX)
            throw stream::exception(words, origin);
        return pass(std::min<std::size_t>(static_cast<std::size_t>(count), left().size()));
    }

private:
    std::size_t pass(std::size_t count) { return at_ += count, count; }

    std::string_view data_;
    std::size_t at_;
};

template <>
class plain<stream::array_input> : public plain_memory {
public:
    plain(char const * data, uint32 length, uint32 start) : plain_memory({data, length}, start) {}

protected:
    uint64 _skip(uint64 count) override {
        return pass_most(count, "cannot skip more than the maximum array size", "stream::array_input");
    }
};

template <>
class plain<stream::vector_input> : public plain_memory {
public:
    plain(byte_vector const & data, uint32 start)
        : plain_memory({reinterpret_cast<char const *>(data.data()), data.size()}, start) {}

protected:
    uint64 _skip(uint64 count) override {
        return pass_most(count, "cannot skip more than the maximum vector size", "stream::vector_input");
    }
    uint64 _copy_to(stream::output & target) override {
        target.write(left().data(), static_cast<uint32>(left().size()));
        return left().size();
    }
};

template <>
class plain<stream::filter_input> : public plain_input {
public:
    plain() = default;
    explicit plain(input & stream) : under_(&stream) {}

    uint64 size() const override { return under_ ? under_->size() : 0; }
    void close() override {
        if (under_)
            under_->close();
    }
    void under(input & stream) { under_ = &stream; }
    input & under() {
        if (!under_)
            throw stream::exception("there is no stream beneath", "stream::filter_input");
        return *under_;
    }

protected:
    uint32 _read(char * buffer, uint32 count) override { return under_ ? under_->read(buffer, count) : 0; }
    int _read() override { return under_ ? under_->read() : -1; }
    uint64 _skip(uint64 count) override { return under_ ? under_->skip(count) : 0; }
    uint64 _tell() const override { return under_ ? under_->tell() : 0; }

    input * under_ = nullptr;
};
using plain_filter_input = plain<stream::filter_input>;

template <>
class plain<stream::direct_input> : public plain_filter_input {
public:
    using plain_filter_input::plain_filter_input;
    void unread(char const * data, uint32 count) override { under().unread(data, count); }
    void unread(char byte) override { under().unread(byte); }
};
using plain_direct_input = plain<stream::direct_input>;

template <>
class plain<stream::counted_input> : public plain_direct_input {
public:
    plain(input & stream, uint64 start) : plain_direct_input(stream), count_(start) {}
    uint64 count() const { return count_; }
    uint64 size() const override { return count_; }
    void unread(char const * data, uint32 count) override {
        plain_direct_input::unread(data, count);
        count_ -= count;
    }
    void unread(char byte) override {
        plain_direct_input::unread(byte);
        --count_;
    }

protected:
    uint32 _read(char * buffer, uint32 count) override {
        auto const got = std::min(under().read(buffer, count), count);
        count_ += got;
        return got;
    }
    int _read() override {
        int const byte = under().read();
        count_ += byte != -1;
        return byte;
    }
    uint64 _skip(uint64 count) override {
        auto const skipped = std::min(under().skip(count), count);
        count_ += skipped;
        return skipped;
    }
    uint64 _tell() const override { return count_; }

private:
    uint64 count_;
};

template <>
class plain<stream::limited_input> : public plain_direct_input {
public:
    plain(input & stream, uint64 limit) : plain_direct_input(stream), limit_(limit), left_(limit) {}
    uint64 limit() const { return limit_; }
    uint64 consumed() const { return limit_ - left_; }
    bool seek(uint64 where) override {
        if (where > limit_)
            throw stream::exception("cannot seek past the end of the stream", "stream::limited_input");
        bool const moved = under().seek(where);
        left_ = limit_ - where;
        return moved;
    }
    uint64 size() const override { return limit_; }
    void unread(char const * data, uint32 count) override {
        plain_direct_input::unread(data, count);
        left_ = left_ > all_ones - count ? all_ones : left_ + count;
    }
    void unread(char byte) override {
        plain_direct_input::unread(byte);
        left_ += left_ < all_ones;
    }

protected:
    uint32 _read(char * buffer, uint32 count) override {
        auto const wanted = static_cast<uint32>(std::min<uint64>(count, left_));
        left_ -= wanted;
        return wanted == 0 ? 0 : std::min(under().read(buffer, wanted), wanted);
    }
    int _read() override {
        if (left_ == 0)
            return -1;
        --left_;
        return under().read();
    }
    uint64 _skip(uint64 count) override {
        auto const wanted = std::min(count, left_);
        auto const skipped = wanted == 0 ? 0 : std::min(under().skip(wanted), wanted);
        left_ -= skipped;
        return skipped;
    }

private:
    uint64 limit_, left_;
};

template <>
class plain<stream::safe_input> : public plain_direct_input {
public:
    using plain_direct_input::plain_direct_input;

protected:
    uint32 _read(char * buffer, uint32 count) override { return whole(under().read(buffer, count) >= count), count; }
    int _read() override {
        int const byte = under().read();
        return whole(byte != -1), byte;
    }
    uint64 _skip(uint64 count) override { return whole(under().skip(count) >= count), count; }

private:
    static void whole(bool came) {
        if (!came)
            throw stream::exception("unexpected end of file", "stream::safe_input");
    }
};

template <>
class plain<stream::buffered_input> : public plain_filter_input {
public:
    plain(input & stream, uint32 size)
        : plain_filter_input(stream), size_(std::max<uint32>(size, 1)), at_(stream.tell()) {}
    ~plain() override {
        refuses<stream::exception>([this] { refuses<support::failure>([this] { yield(); }); });
    }

    void unread(char const * data, uint32 count) override {
        ahead_.insert(0, data, count);
        at_ -= count;
    }
    void unread(char byte) override { unread(&byte, 1); }
    void yield() {
        if (!ahead_.empty())
            under().unread(ahead_.data(), static_cast<uint32>(ahead_.size()));
        ahead_.clear();
    }

protected:
    uint32 _read(char * buffer, uint32 count) override {
        auto const given = take(buffer, count), wanted = count - given;
        if (wanted == 0)
            return given;
        if (wanted < size_ / 2) {
            fill();
            return given + take(buffer + given, wanted);
        }
        auto const got = std::min(under().read(buffer + given, wanted), wanted);
        at_ += got;
        return given + got;
    }
    int _read() override {
        if (ahead_.empty())
            fill();
        char byte;
        return take(&byte, 1) == 0 ? -1 : static_cast<unsigned char>(byte);
    }
    uint64 _skip(uint64 count) override {
        auto const passed = std::min<uint64>(count, ahead_.size());
        ahead_.erase(0, static_cast<std::size_t>(passed));
        at_ += passed;
        if (passed == count)
            return passed;
        auto const skipped = std::min(under().skip(count - passed), count - passed);
        at_ += skipped;
        return passed + skipped;
    }
    uint64 _tell() const override { return at_; }

private:
    uint32 take(char * buffer, uint32 count) {
        auto const given = static_cast<uint32>(ahead_.copy(buffer, count));
        ahead_.erase(0, given);
        at_ += given;
        return given;
    }
    void fill() {
        narrow_string block(size_, '\0');
        block.resize(std::min(under().read(block.data(), size_), size_));
        ahead_ = block;
    }

    uint32 size_;
    narrow_string ahead_;
    uint64 at_;
};

template <>
class plain<stream::endian_input> : public plain_direct_input {
public:
    plain(input & stream, bool big) : plain_direct_input(stream), big_(big) {}
    unsigned char read8() { return static_cast<unsigned char>(read()); }
    uint16 read16() { return static_cast<uint16>(number(2)); }
    uint32 read24() { return number(3) & (in_blocks() ? 0xFFFFFF : 0xFFFFFFFF); }
    uint32 read32() { return number(4); }
    uint64 read64() {
        char bytes[8];
        uint32 const got = in_blocks() ? read(bytes, 8) : 8;
        uint64 const first = in_blocks() ? joined(bytes, std::min<uint32>(got, 4), 4) : number(4);
        uint64 const second = in_blocks() ? joined(bytes + 4, got > 4 ? got - 4 : 0, 4) : number(4);
        return big_ ? first << 32 | second : second << 32 | first;
    }

private:
    bool in_blocks() const { return big_ == (std::endian::native == std::endian::big); }
    uint32 number(uint32 width) {
        char bytes[4];
        if (in_blocks())
            return joined(bytes, read(bytes, width), width);
        uint32 value = 0;
        for (uint32 i = 0; i < width; ++i)
            value |= static_cast<uint32>(read()) << shift(i, width);
        return value;
    }
    /// What is missing sets every bit from its place upward.
    uint32 joined(char const * bytes, uint32 got, uint32 width) const {
        uint32 value = 0;
        for (uint32 i = 0; i < width; ++i)
            value |= (i < got ? static_cast<unsigned char>(bytes[i]) : 0xFFFFFFFF) << shift(i, width);
        return value;
    }
    uint32 shift(uint32 index, uint32 width) const { return 8 * (big_ ? width - 1 - index : index); }

    bool big_;
};

template <>
class plain<stream::big_endian_input> : public plain<stream::endian_input> {
public:
    explicit plain(input & stream) : plain<stream::endian_input>(stream, true) {}
};
template <>
class plain<stream::little_endian_input> : public plain<stream::endian_input> {
public:
    explicit plain(input & stream) : plain<stream::endian_input>(stream, false) {}
};

template <class Value>
void read_integers(plain<stream::endian_input> & in, std::span<Value> values) {
    for (auto & value : values)
        value = static_cast<Value>(sizeof value == 2 ? in.read16() : sizeof value == 4 ? in.read32() : in.read64());
}

template <>
class plain<stream::line_input> : public plain_direct_input {
public:
    using plain_direct_input::plain_direct_input;
    uint32 read_line(char * buffer, uint32 size) {
        if (size == 0)
            return 0;
        narrow_string line;
        uint32 const length = size == 1 ? 0 : take(line, size - 1);
        buffer[line.copy(buffer, size)] = '\0';
        return length;
    }
    narrow_string read_line() {
        narrow_string line;
        take(line, SIZE_MAX);
        return line;
    }
    uint32 read_line(byte_vector & line) {
        line.clear();
        narrow_string text;
        uint32 const length = take(text, SIZE_MAX);
        line = vector_of(text);
        return length;
    }
    uint32 read_line(narrow_string & line) { return line.clear(), take(line, SIZE_MAX); }

private:
    uint32 take(narrow_string & line, std::size_t most) {
        while (line.size() < most) {
            int const byte = read();
            if (byte == -1 && line.empty())
                return 0xFFFFFFFF;
            if (byte != -1 && byte != '\r' && byte != '\n')
                line += static_cast<char>(byte);
            else if (!line.empty())
                break;
        }
        return static_cast<uint32>(line.size());
    }
};

template <>
class plain<stream::multi_input> : public plain_direct_input {
public:
    uint64 size() const override { return all_ones; }

protected:
    uint32 _read(char * buffer, uint32 count) override {
        return static_cast<uint32>(pass(count, [&](uint64 done) {
            auto const wanted = count - static_cast<uint32>(done);
            return std::min(under_->read(buffer + done, wanted), wanted);
        }));
    }
    int _read() override {
        int byte = -1;
        pass(1, [&](uint64) { return (byte = under_->read()) != -1; });
        return byte;
    }
    uint64 _skip(uint64 count) override {
        return pass(count, [&](uint64 done) { return std::min(under_->skip(count - done), count - done); });
    }
    uint64 _tell() const override { return total_; }
    virtual void next() { under_ = nullptr; }

private:
    uint64 pass(uint64 count, auto move) {
        uint64 done = 0;
        while (done < count && under_) {
            uint64 const got = move(done);
            total_ += got;
            done += got;
            if (done < count)
                next();
        }
        return done;
    }

    uint64 total_ = 0;
};

template <>
class plain<stream::copier> {
public:
    explicit plain(uint32 size) : size_(std::max<uint32>(size, 1)) {}
    uint64 process(stream::input & source, stream::output & target, uint64 count = all_ones) const {
        target.mark();
        narrow_string block(size_, '\0');
        for (;;) {
            auto const wanted = static_cast<uint32>(std::min<uint64>(count, size_));
            auto const got = std::min(source.read(block.data(), wanted), wanted);
            target.write(block.data(), got);
            count -= count == all_ones ? 0 : got;
            if (count == all_ones ? got == 0 : got < wanted || count == 0)
                return target.drift();
        }
    }

private:
    uint32 size_;
};

} // namespace fuzz
