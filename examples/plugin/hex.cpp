#include "filter.h"

#include <socle/stream/exception.h>

namespace {

/// A class of the plug-in's own, whose code goes with the plug-in.
class bad_hex : public stream::exception {
public:
    explicit bad_hex(narrow_string const & message) : stream::exception(message, "hex") {}
};

/// The bytes that hexadecimal text stands for. White space may stand between bytes.
class hex_input : public stream::input {
public:
    explicit hex_input(stream::input & source) : source_(source) {}

protected:
    int _read() override {
        int byte = -1;
        try {
            byte = next();
        } catch (bad_hex const & e) {
            // The host may hold the exception for longer than the plug-in. Raise throws a copy of the library's class.
            e.Raise();
        }
        return byte;
    }
    uint64 _tell() const override { return position_; }

private:
    int next() {
        int const high = after_space();
        if (high == -1)
            return -1;
        int const low = source_.read();
        if (low == -1)
            throw bad_hex("ends in the middle of a byte");
        int const byte = digit(high) * 16 + digit(low);
        ++position_;
        return byte;
    }
    int after_space() {
        int c = source_.read();
        while (c == ' ' || c == '\t' || c == '\r' || c == '\n')
            c = source_.read();
        return c;
    }
    int digit(int c) const {
        if (c >= '0' && c <= '9')
            return c - '0';
        int const letter = c | 0x20;
        if (letter >= 'a' && letter <= 'f')
            return letter - 'a' + 10;
        throw bad_hex("is no hexadecimal text at byte " + std::to_string(source_.tell() - 1));
    }

    stream::input & source_;
    uint64 position_ = 0;
};

std::unique_ptr<stream::input> make(stream::input & source) { return std::make_unique<hex_input>(source); }

constexpr filter hex = {SOCLE_VERSION, make};

} // namespace

extern "C" filter const * socle_filter() { return &hex; }
