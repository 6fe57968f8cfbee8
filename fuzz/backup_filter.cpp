/// The filter of a file's streams in a backup.

#include "fuzz/support/feed.h"
#include "tests/support/record_sequence.h"

namespace {

using fuzz::check;

/// What comes through, and why it ended, read in blocks of the sizes given in turn.
struct outcome {
    narrow_string bytes, failure;
};

outcome filtered(std::string_view bytes, std::string_view sizes) {
    support::record_sequence source(bytes);
    nio::backup_filter filter;
    outcome result;
    try {
        for (std::size_t turn = 0;; ++turn) {
            uint32 const size = fuzz::block_size(sizes, turn);
            narrow_string block(size, '\xDD');
            uint32 const got = filter.read(source, block.data(), size);
            check(got <= size && block.find_first_not_of('\xDD', got) == block.npos);
            result.bytes.append(block, 0, got);
            if (got < size)
                break;
        }
        char more = 0;
        check(filter.read(source, &more, 1) == 0);
    } catch (std::runtime_error const & e) {
        result.failure = e.what();
    }
    return result;
}

} // namespace

void fuzz::run(std::string_view input) {
    feed in(input);
    narrow_string const sizes = in.text();
    auto const bytes = in.rest();
    auto const once = filtered(bytes, sizes);
    // Nothing is added, and what has come through comes through again.
    check(once.bytes.size() <= bytes.size());
    if (once.failure.empty()) {
        auto const again = filtered(once.bytes, "");
        check(again.failure.empty() && again.bytes == once.bytes);
    }
    // In whatever blocks, the same comes, and so it does byte by byte up to the failure.
    auto const singles = filtered(bytes, narrow_string(1, '\0'));
    check(singles.failure == once.failure && singles.bytes.starts_with(once.bytes));
}
