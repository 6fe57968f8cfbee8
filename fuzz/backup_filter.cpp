/// The filter of a file's streams in a backup.

#include "fuzz/support/feed.h"
#include "socle/nio/backup_filter_internal.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace {

using fuzz::check;

/// A sequence in memory. What is read as a record's head tells where its data ends, at the latest with the sequence.
class sequence : public nio::record_source {
public:
    explicit sequence(std::string_view bytes) : bytes_(bytes) {}

    bool read(char * buffer, uint32 size, uint32 & done) override {
        done = static_cast<uint32>(std::min<std::size_t>(size, bytes_.size() - at_));
        std::memcpy(buffer, bytes_.data() + at_, done);
        if (at_ == data_end_ && done == 20)
            data_end_ = at_ + 20 + fuzz::number_at(bytes_, at_ + 16, 4)
                        + std::min<uint64>(fuzz::number_at(bytes_, at_ + 8, 8), bytes_.size());
        at_ += done;
        return true;
    }
    void skip_data() override { at_ = static_cast<std::size_t>(std::min<uint64>(data_end_, bytes_.size())); }
    [[noreturn]] void fail(char const * message) override { throw std::runtime_error(message); }

private:
    std::string_view bytes_;
    std::size_t at_ = 0;
    uint64 data_end_ = 0;
};

/// What comes through, and why it ended, read in blocks of the sizes given in turn.
struct outcome {
    narrow_string bytes, failure;
};

outcome filtered(std::string_view bytes, std::string_view sizes) {
    sequence source(bytes);
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
