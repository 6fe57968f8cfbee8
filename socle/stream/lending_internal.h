#pragma once

#include "socle/nio/lending_internal.h"
#include "socle/stream/input.h"
#include "socle/stream/output.h"

namespace stream {

/// `nio::lending` for the streams of this family, without a virtual call where the memory lies open.
struct lending {
    static std::span<char const> bytes(input & stream) {
        if (stream.memory_.open())
            return stream.memory_.window();
        return nio::lending::bytes(stream);
    }
    static void take(input & stream, uint64 count) {
        if (stream.memory_.open())
            stream.memory_.next += count;
        else
            nio::lending::take(stream, count);
    }

    static std::span<char> room(output & stream) {
        if (stream.memory_.open())
            return stream.memory_.window();
        return nio::lending::room(stream);
    }
    static void use(output & stream, uint64 count) {
        if (stream.memory_.open())
            stream.memory_.next += count;
        else
            nio::lending::use(stream, count);
    }
};

} // namespace stream
