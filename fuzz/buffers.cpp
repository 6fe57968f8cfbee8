/// Buffers of both families over a stream of which one call fails: nothing is lost, and nothing comes twice.

#include "fuzz/support/feed.h"
#include "socle/nio/buffered_input.h"
#include "socle/nio/buffered_output.h"
#include "socle/stream/buffered_input.h"
#include "socle/stream/buffered_output.h"
#include "socle/stream/endian_output.h"
#include "tests/support/memory_sources.h"

namespace {

using fuzz::check;
using fuzz::refuses;
using support::failure;

/// Whatever failed, what comes next is told by the position.
template <class Input>
void read(int failing, uint32 size, fuzz::feed steps) {
    constexpr bool narrow = std::is_base_of_v<stream::input, Input>;
    narrow_string data(500, '\0');
    for (std::size_t i = 0; i < data.size(); ++i)
        data[i] = static_cast<char>(i * 7 + i / 251);
    support::drops source(data);
    support::failing_source beneath(source, failing);
    Input in(beneath, size);
    while (!steps.empty()) {
        unsigned const way = narrow ? steps.below(7) : 6;
        uint32 const count = steps.below(24);
        auto const place = static_cast<std::size_t>(in.tell());
        auto const left = std::string_view(data).substr(place);
        char block[24];
        bool const failed = refuses<failure>([&] {
            if (way > 3)
                in.read(block, count);
            if constexpr (narrow) {
                auto const back = static_cast<uint32>(std::min<std::size_t>(place, count));
                switch (way) {
                case 0: check(in.read() == (left.empty() ? -1 : static_cast<unsigned char>(left[0]))); break;
                case 1: check(in.skip(count) == std::min<std::size_t>(left.size(), count)); break;
                case 2: in.unread(left.data() - back, back); break;
                case 3: in.yield(); break;
                }
            }
        });
        auto const now = static_cast<std::size_t>(in.tell());
        if (way > 3) {
            check(std::string_view(block, now - place) == left.substr(0, now - place));
            check(failed || now > place || count == 0 || left.empty());
        }
    }
    if constexpr (narrow) {
        if (refuses<failure>([&] { in.yield(); }))
            in.yield();
        check(source.tell() == in.tell());
    }
}

template <class Output>
void write(int failing, uint32 size, fuzz::feed steps) {
    support::recording_target target(failing);
    narrow_string taken;
    {
        Output out(target, size);
        while (!steps.empty()) {
            unsigned const way = steps.below(5);
            narrow_string const piece(way < 2 ? 1 : steps.below(13), static_cast<char>(steps.byte()));
            bool const failed = refuses<failure>([&] {
                if (way == 4)
                    return out.flush();
                if (way == 0)
                    return out.write(static_cast<unsigned char>(piece[0]));
                if constexpr (std::is_base_of_v<stream::output, Output>) {
                    if (way == 1)
                        return stream::big_endian_output(out).write8(static_cast<unsigned char>(piece[0]));
                    if (way == 2)
                        return out.write(piece);
                }
                out.write(piece.data(), static_cast<uint32>(piece.size()));
            });
            if (!failed && way != 4)
                taken += piece;
            check(out.tell() == taken.size());
        }
        if (refuses<failure>([&] { out.flush(); }))
            out.flush();
    }
    check(target.data == taken);
}

} // namespace

void fuzz::run(std::string_view input) {
    feed in(input);
    int const failing = static_cast<int>(in.below(40));
    uint32 const size = in.below(13);
    feed const steps(in.rest());
    read<stream::buffered_input>(failing, size, steps);
    read<nio::buffered_input>(failing, size, steps);
    write<stream::buffered_output>(failing, size, steps);
    write<nio::buffered_output>(failing, size, steps);
}
