/// Buffers of the family nio over a stream of which one call fails: nothing is lost, and nothing comes twice.

#include "fuzz/support/feed.h"
#include "socle/nio/buffered_input.h"
#include "socle/nio/buffered_output.h"
#include "tests/support/memory_sources.h"

namespace {

using fuzz::check;
using fuzz::refuses;
using support::failure;

/// Whatever failed, what comes next is told by the position.
void read(int failing, uint32 size, fuzz::feed steps) {
    narrow_string data(500, '\0');
    for (std::size_t i = 0; i < data.size(); ++i)
        data[i] = static_cast<char>(i * 7 + i / 251);
    support::drops source(data);
    support::failing_source beneath(source, failing);
    nio::buffered_input in(beneath, size);
    while (!steps.empty()) {
        uint32 const count = steps.below(24);
        auto const place = static_cast<std::size_t>(in.tell());
        auto const left = std::string_view(data).substr(place);
        char block[24];
        bool const failed = refuses<failure>([&] { in.read(block, count); });
        auto const now = static_cast<std::size_t>(in.tell());
        check(std::string_view(block, now - place) == left.substr(0, now - place));
        check(failed || now > place || count == 0 || left.empty());
    }
}

void write(int failing, uint32 size, fuzz::feed steps) {
    support::recording_target target(failing);
    narrow_string taken;
    {
        nio::buffered_output out(target, size);
        while (!steps.empty()) {
            unsigned const way = steps.below(5);
            narrow_string const piece(way < 2 ? 1 : steps.below(13), static_cast<char>(steps.byte()));
            bool const failed = refuses<failure>([&] {
                if (way == 4)
                    out.flush();
                else if (way == 0)
                    out.write(static_cast<unsigned char>(piece[0]));
                else
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
    read(failing, size, steps);
    write(failing, size, steps);
}
