#pragma once

#include "fuzz/support/chains.h"
#include "socle/stream/array_output.h"
#include "socle/stream/buffered_output.h"
#include "socle/stream/counted_output.h"
#include "socle/stream/endian_output.h"
#include "socle/stream/infinite_output.h"
#include "socle/stream/multi_output.h"
#include "socle/stream/text_output.h"
#include "socle/stream/vector_output.h"

#include <bit>

/// The sinks of the library, as their contracts tell them.
namespace fuzz {

class plain_output : public stream::output {
public:
    using output::write;
    void write(char const * data, uint32 count) override {
        for (uint32 i = 0; i < count; ++i)
            write(data[i]);
    }
    uint64 size() const override { return tell(); }
    void write(narrow_string const & text) override { write(text.data(), static_cast<uint32>(text.size())); }
    void copy_from(stream::input & source) override {
        for (int byte = source.read(); byte != -1; byte = source.read())
            write(static_cast<char>(byte));
    }
    void flush_through() override { flush(); }
    void close() override { flush(); }
};

template <>
class plain<stream::infinite_output> : public plain_output {
public:
    using output::write;
    uint64 count() const { return count_; }
    void write(char const *, uint32 count) override { count_ += count; }
    void write(char) override { ++count_; }
    uint64 tell() const override { return count_; }
    void copy_from(stream::input & source) override {
        while (source.read() != -1) {
        }
    }
    void resize(uint64) override {}

private:
    uint64 count_ = 0;
};

template <>
class plain<stream::array_output> : public plain_output {
public:
    plain(char * data, uint32 length, uint32 start) : data_(data), length_(length), at_(start) {}
    using plain_output::write;
    void write(char byte) override {
        if (at_ >= length_)
            throw stream::exception("cannot write past the end of a fixed-size buffer", "stream::array_output");
        data_[at_++] = byte;
    }
    uint64 tell() const override { return at_; }
    void copy_from(stream::input & source) override {
        uint64 const size = source.size();
        if (size > (at_ < length_ ? length_ - at_ : 0))
            throw stream::exception("input stream is too large to copy into the array", "stream::array_output");
        if (size > 0)
            at_ += std::min<uint64>(source.read(data_ + at_, static_cast<uint32>(size)), size);
    }
    void resize(uint64 new_size) override {
        if (new_size != at_)
            throw stream::exception("cannot resize its buffer", "stream::array_output");
    }

private:
    char * data_;
    uint64 length_, at_;
};

template <>
class plain<stream::vector_output> : public plain_output {
public:
    plain(byte_vector & vector, uint32 start) : vector_(vector), at_(start) {}
    using plain_output::write;
    void write(char byte) override {
        if (at_ >= vector_.size())
            vector_.push_back(static_cast<unsigned char>(byte));
        else
            vector_[static_cast<std::size_t>(at_)] = static_cast<unsigned char>(byte);
        ++at_;
    }
    void write(char const * data, uint32 count) override {
        if (count > 0)
            vector_.resize(std::max(vector_.size(), static_cast<std::size_t>(at_ + count)));
        plain_output::write(data, count);
    }
    uint64 tell() const override { return at_; }
    void copy_from(stream::input & source) override {
        uint64 const size = source.size(), end = std::max<uint64>(vector_.size(), at_);
        if (size + end > UINT32_MAX || size > UINT32_MAX)
            throw stream::exception("input stream is too large to copy into the vector", "stream::vector_output");
        if (size == 0)
            return;
        vector_.resize(static_cast<std::size_t>(end + size));
        at_ += std::min<uint64>(source.read(reinterpret_cast<char *>(vector_.data()) + at_, uint32(size)), size);
    }
    void resize(uint64 new_size) override {
        if (new_size < at_)
            throw stream::exception("I do not truncate the stream", "stream::vector_output");
        if (new_size > at_)
            vector_.resize(static_cast<std::size_t>(new_size));
    }

private:
    byte_vector & vector_;
    uint64 at_;
};

template <>
class plain<stream::filter_output> : public plain_output {
public:
    plain() = default;
    explicit plain(output & stream) : under_(&stream) {}

    using plain_output::write;
    void write(char const * data, uint32 count) override { under().write(data, count); }
    void write(narrow_string const & text) override { under().write(text); }
    void write(char byte) override { under().write(byte); }
    uint64 tell() const override { return under_ ? under_->tell() : 0; }
    void copy_from(stream::input & source) override { under().copy_from(source); }
    void resize(uint64 new_size) override { under().resize(new_size); }
    void flush_through() override {
        flush();
        if (under_)
            under_->flush_through();
    }
    void close() override {
        flush();
        if (under_)
            under_->close();
    }
    virtual void under(output & stream) { under_ = &stream; }
    output & under() {
        if (!under_)
            throw stream::exception("there is no stream beneath", "stream::filter_output");
        return *under_;
    }

protected:
    output * under_ = nullptr;
};
using plain_filter_output = plain<stream::filter_output>;

template <>
class plain<stream::counted_output> : public plain_filter_output {
public:
    plain(output & stream, uint64 start) : plain_filter_output(stream), count_(start) {}
    using plain_filter_output::write;
    uint64 count() const { return count_; }
    void write(char const * data, uint32 count) override {
        under().write(data, count);
        count_ += count;
    }
    void write(char byte) override {
        under().write(byte);
        ++count_;
    }
    uint64 tell() const override { return count_; }

private:
    uint64 count_;
};

template <>
class plain<stream::buffered_output> : public plain_filter_output {
public:
    plain(output & stream, uint32 size)
        : plain_filter_output(stream), size_(std::max<uint32>(size, 1)), base_(stream.tell()) {}
    ~plain() override {
        refuses<stream::exception>([this] { refuses<support::failure>([this] { flush(); }); });
    }

    void end() override { flush(); }
    using plain_filter_output::write;
    void write(char const * data, uint32 count) override {
        if (held_.size() + count > size_ || count >= size_)
            flush();
        if (count < size_) {
            held_.append(data, count);
        } else {
            under().write(data, count);
            base_ += count;
        }
    }
    void write(narrow_string const & text) override { plain_output::write(text); }
    void write(char byte) override {
        if (held_.size() == size_)
            flush();
        held_ += byte;
    }
    void flush() override { put(held_.size()); }
    uint64 tell() const override { return base_ + held_.size(); }
    void copy_from(stream::input & source) override {
        flush();
        move_beneath([&] { under().copy_from(source); });
    }
    void resize(uint64 new_size) override {
        if (new_size > base_) {
            put(static_cast<std::size_t>(std::min<uint64>(held_.size(), new_size - base_)));
            return move_beneath([&] { under().resize(new_size); });
        }
        under().resize(new_size);
        base_ = new_size;
        held_.clear();
    }

private:
    /// Writes so many bytes of what is held, and drops the rest.
    void put(std::size_t count) {
        if (count > 0)
            under().write(held_.data(), static_cast<uint32>(count));
        base_ += count;
        held_.clear();
    }
    void move_beneath(auto act) {
        struct at_end {
            plain & buffer;
            ~at_end() { buffer.base_ = buffer.under_->tell(); }
        } const taken{*this};
        act();
    }

    uint32 size_;
    narrow_string held_;
    uint64 base_;
};

template <>
class plain<stream::text_output> : public plain_filter_output {
public:
    plain(output & stream, int mode) : plain_filter_output(stream), mode_(mode) {}
    using plain_filter_output::write;
    void write(char const * data, uint32 count) override {
        mode_ == 0 ? under().write(data, count) : plain_output::write(data, count);
    }
    void write(narrow_string const & text) override { under().write(text.data(), static_cast<uint32>(text.size())); }
    void write(char byte) override {
        bool const ends = mode_ != 0 && (byte == '\r' || byte == '\n');
        if (!ends)
            under().write(byte);
        else if (byte == '\r' || !after_cr_)
            eol();
        after_cr_ = byte == '\r' && mode_ != 0;
    }
    void eol() {
        if (mode_ == 2 || mode_ == 3)
            under().write('\r');
        if (mode_ == 1 || mode_ == 3)
            under().write('\n');
    }
    void reset() { after_cr_ = true; }

private:
    int mode_;
    bool after_cr_ = false;
};

template <>
class plain<stream::endian_output> : public plain_filter_output {
public:
    plain(output & stream, bool big) : plain_filter_output(stream), big_(big) {}
    void write8(unsigned char value) { under().write(static_cast<char>(value)); }
    void write16(uint16 value) { put(value, 2); }
    void write24(uint32 value) { put(value, 3); }
    void write32(uint32 value) { put(value, 4); }
    void write64(uint64 value) { put(value, 8); }

private:
    void put(uint64 value, uint32 width) {
        char bytes[8];
        for (uint32 i = 0; i < width; ++i)
            bytes[i] = static_cast<char>(value >> 8 * (big_ ? width - 1 - i : i));
        if (big_ == (std::endian::native == std::endian::big))
            return under().write(bytes, width);
        for (uint32 i = 0; i < width; ++i)
            under().write(bytes[i]);
    }

    bool big_;
};

template <>
class plain<stream::big_endian_output> : public plain<stream::endian_output> {
public:
    explicit plain(output & stream) : plain<stream::endian_output>(stream, true) {}
};
template <>
class plain<stream::little_endian_output> : public plain<stream::endian_output> {
public:
    explicit plain(output & stream) : plain<stream::endian_output>(stream, false) {}
};

template <class Value>
void write_integers(plain<stream::endian_output> & out, std::span<Value const> values) {
    for (auto const value : values)
        sizeof value == 2   ? out.write16(uint16(value))
        : sizeof value == 4 ? out.write32(uint32(value))
                            : out.write64(value);
}

template <>
class plain<stream::multi_output> : public plain_filter_output {
public:
    uint64 limit() const { return limit_; }
    uint64 written() const { return written_; }
    using plain_filter_output::under;
    using plain_filter_output::write;
    void write(char const * data, uint32 count) override {
        while (count > 0) {
            make_room();
            auto const fitting = static_cast<uint32>(std::min<uint64>(count, limit_ - written_));
            put(fitting, [&] { under().write(data, fitting); });
            data += fitting;
            count -= fitting;
        }
    }
    void write(char byte) override {
        make_room();
        put(1, [&] { under().write(byte); });
    }
    uint64 tell() const override { return total_; }
    uint64 size() const override { return all_ones; }
    void under(output & stream) override {
        plain_filter_output::under(stream);
        written_ = 0;
    }
    virtual void next() { under_ = nullptr; }

protected:
    void limit(uint64 bytes) { limit_ = bytes; }

private:
    /// A series that has ended is not asked again; one that failed is.
    void make_room() {
        while (!under_ || written_ >= limit_) {
            auto const written = written_;
            if (!ended_ && refuses<support::failure>([&] { next(); })) {
                written_ = written;
                throw support::failure();
            }
            ended_ = !under_;
            if (ended_)
                throw stream::exception("I have run out of files to write", "stream::multi_output");
        }
    }
    void put(uint32 count, auto write) {
        write();
        total_ += count;
        written_ += count;
    }

    uint64 limit_ = 0, total_ = 0, written_ = 0;
    bool ended_ = false;
};

} // namespace fuzz
