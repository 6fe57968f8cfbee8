#pragma once

#include "fuzz/support/feed.h"
#include "socle/stream/exception.h"
#include "socle/stream/input.h"
#include "socle/stream/output.h"
#include "tests/support/memory_sources.h"
#include "tests/support/raised.h"

#include <concepts>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <vector>

/// What the chains of both directions are made of. A chain is put together three times and used in the same way each
/// time: of the library's classes, of empty classes derived from them, which the library may not take a short way
/// around, and of plain classes written from the contracts. Whatever can be seen of it is written down, and the three
/// accounts have to be the same.
namespace fuzz {

/// A caller's class.
template <class Stream>
class callers : public Stream {
public:
    using Stream::Stream;
};

/// A class of the library's, as its contract tells it.
template <class Stream>
class plain;

/// A kind of chain: the class in the place of `Stream`, and through which it is used.
template <template <class> class Class, template <class> class Used = Class>
struct kind {
    template <class Stream>
    using type = Class<Stream>;
    template <class Stream>
    using used = Used<Stream>;
};
using of_library = kind<std::type_identity_t>;
using of_callers = kind<callers, std::type_identity_t>;
using of_plain = kind<plain>;

/// A few bytes, sometimes many.
inline narrow_string some_bytes(feed & in) {
    auto const size = in.byte();
    return narrow_string(in.bytes(size < 224 ? size % 16 : size));
}

/// What is written down of a chain.
class account {
public:
    narrow_string text;

    void tell(char const * what, auto const &... details) {
        text += what;
        ((text += ' ', add(details)), ...);
        text += '\n';
    }

    /// The result of a call, or what it throws.
    void result(auto && call) {
        try {
            tell("gives", call());
        } catch (stream::exception const & e) {
            tell("throws", support::words_of(e));
        } catch (support::failure const &) {
            tell("fails");
        } catch (std::length_error const &) {
            tell("too long");
        }
    }

private:
    void add(narrow_string const & bytes) { text += bytes; }
    void add(std::integral auto number) { text += std::to_string(static_cast<uint64>(number)); }
};

/// Ends the program where two accounts differ, and shows the place.
inline void check_same(narrow_string const & one, narrow_string const & other, char const * names) {
    if (one == other)
        return;
    auto const at = std::size_t(std::mismatch(one.begin(), one.end(), other.begin(), other.end()).first - one.begin());
    auto const from = at - std::min<std::size_t>(at, 300);
    std::fprintf(stderr, "%s:\n%s\n<== %s\n<== %s\n", names, one.substr(from, at - from).c_str(),
                 one.substr(at, 100).c_str(), other.substr(at, 100).c_str());
    check(false);
}

struct manners {
    bool drops, seeks, lies, skips, singles;
    unsigned failing; // this call, 0 for none
};

inline manners manners_of(feed & in) {
    unsigned const bits = in.byte(), failing = in.byte();
    return {(bits & 1) != 0,  (bits & 6) == 6,     (bits & 24) == 24,
            (bits & 32) != 0, (bits & 192) == 192, failing < 64 ? failing : 0};
}

/// A caller's source, which tells what it is asked for.
template <class Base>
class told_source : public Base {
public:
    told_source(std::string_view data, manners m, account & to) : data_(data), manners_(m), account_(to) {}

    uint64 size() const override { return data_.size(); }
    bool seek(uint64 where) override {
        account_.tell("  seek", where);
        if (!manners_.seeks)
            return stream::input::seek(where);
        at_ = where;
        return where <= data_.size();
    }
    void close() override { account_.tell("  close"); }

protected:
    uint32 _read(char * buffer, uint32 count) override {
        if (manners_.singles)
            return Base::_read(buffer, count);
        step("  read", count);
        // What did not come has no meaning.
        std::fill_n(buffer, std::min(count, uint32(300)), '\xDD');
        auto const got = left().copy(buffer, manners_.drops ? std::min(count, 1 + calls_ % 7) : count);
        at_ += got;
        return static_cast<uint32>(got) + (manners_.lies && got == count ? 1000 : 0);
    }
    int _read() override {
        step("  read one", 1);
        return left().empty() ? -1 : static_cast<unsigned char>(data_[static_cast<std::size_t>(at_++)]);
    }
    uint64 _skip(uint64 count) override {
        if (!manners_.skips)
            return Base::_skip(count);
        step("  skip", count);
        auto const skipped = std::min<uint64>(count, left().size());
        at_ += skipped;
        return skipped + (manners_.lies && skipped == count ? 1000 : 0);
    }
    uint64 _tell() const override { return at_; }

private:
    std::string_view left() const {
        return data_.substr(static_cast<std::size_t>(std::min<uint64>(at_, data_.size())));
    }
    void step(char const * what, uint64 count) {
        account_.tell(what, count);
        if (++calls_ == manners_.failing)
            throw support::failure();
    }

    std::string_view data_;
    manners manners_;
    account & account_;
    uint64 at_ = 0;
    unsigned calls_ = 0;
};

/// A caller's sink, which tells what it is asked for; its `failing`-th write fails, 0 for none.
class told_sink : public stream::output {
public:
    told_sink(unsigned failing, account & to) : failing_(failing), account_(to) {}

    using output::write;
    void write(char byte) override {
        step("  write one", {&byte, 1});
        ++at_;
    }
    void write(char const * data, uint32 count) override {
        step("  write", {data, count});
        at_ += count;
    }
    uint64 tell() const override { return at_; }
    void flush() override { account_.tell("  flush"); }
    void close() override { account_.tell("  close"); }

private:
    void step(char const * what, std::string_view data) {
        account_.tell(what, data.size(), narrow_string(data));
        if (++calls_ == failing_)
            throw support::failure();
    }

    unsigned failing_;
    account & account_;
    uint64 at_ = 0;
    unsigned calls_ = 0;
};

/// A chain of one kind, from the bottom up.
template <class Kind, class Base>
class chain {
public:
    chain() = default;
    chain(chain const &) = delete;
    chain & operator=(chain const &) = delete;
    ~chain() {
        while (!streams_.empty())
            pop();
    }

    Base & top() { return *streams_.back(); }
    std::size_t height() const { return streams_.size(); }
    void pop() { streams_.pop_back(); }

    template <class Stream>
    void put(auto &&... arguments) {
        streams_.push_back(std::make_unique<typename Kind::template type<Stream>>(arguments...));
    }
    template <class Stream>
    void put_on_top(auto... arguments) {
        put<Stream>(top(), arguments...);
    }
    void put_bottom(std::unique_ptr<Base> bottom) { streams_.push_back(std::move(bottom)); }

    /// The topmost stream, if it is of this class; else null.
    template <class Stream>
    auto * top_as() {
        return dynamic_cast<typename Kind::template used<Stream> *>(&top());
    }

private:
    std::vector<std::unique_ptr<Base>> streams_;
};

} // namespace fuzz
