#include "filter.h"

#include <socle/stream/exception.h>

#include <algorithm>

namespace {

/// The host may hold the exception for longer than the plug-in, so the library throws it.
[[noreturn]] void fail() { stream::exception("ends in the middle of a run", "runs").Raise(); }

/// The bytes of run lengths: n below 128 stands before n + 1 bytes as they are, n above 128 before a byte that comes
/// 257 - n times, and 128 for nothing.
class runs_input : public stream::input {
public:
    explicit runs_input(stream::input & source) : source_(source) {}

protected:
    int _read() override {
        char byte;
        return _read(&byte, 1) == 1 ? static_cast<unsigned char>(byte) : -1;
    }
    uint32 _read(char * buffer, uint32 count) override {
        uint32 done = 0;
        while (done < count && (left_ > 0 || begin_run())) {
            uint32 const wanted = std::min(count - done, left_);
            if (repeated_)
                std::fill_n(buffer + done, wanted, byte_);
            else if (source_.read(buffer + done, wanted) != wanted)
                fail();
            left_ -= wanted;
            position_ += wanted;
            done += wanted;
        }
        return done;
    }
    uint64 _tell() const override { return position_; }

private:
    /// False at the end.
    bool begin_run() {
        int n = source_.read();
        while (n == 128)
            n = source_.read();
        if (n == -1)
            return false;
        repeated_ = n > 128;
        left_ = static_cast<uint32>(repeated_ ? 257 - n : n + 1);
        int const byte = repeated_ ? source_.read() : 0;
        if (byte == -1) {
            left_ = 0;
            fail();
        }
        byte_ = static_cast<char>(byte);
        return true;
    }

    stream::input & source_;
    uint32 left_ = 0;
    bool repeated_ = false;
    char byte_ = 0;
    uint64 position_ = 0;
};

std::unique_ptr<stream::input> make(stream::input & source) { return std::make_unique<runs_input>(source); }

constexpr filter runs = {SOCLE_VERSION, make};

} // namespace

extern "C" filter const * socle_filter() { return &runs; }
