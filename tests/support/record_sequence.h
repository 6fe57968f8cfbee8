#pragma once

#include "socle/basic/internal/byte_order.h"
#include "socle/nio/backup_filter_internal.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace support {

/// A sequence of backup records in memory, which notes how far the record goes that was read last, at most to its own
/// end; its `n`-th read fails, 0 for none.
class record_sequence : public nio::record_source {
public:
    explicit record_sequence(std::string_view bytes, int n = 0) : bytes_(bytes), left_(n) {}

    bool read(char * buffer, uint32 size, uint32 & done) override {
        if (left_ > 0 && --left_ == 0)
            return false;
        done = static_cast<uint32>(std::min<std::size_t>(size, bytes_.size() - at_));
        std::copy_n(bytes_.data() + at_, done, buffer);
        if (at_ == data_end_ && done == 20)
            data_end_ = at_ + 20 + basic::load<uint32>(buffer + 16, false)
                        + std::min<uint64>(basic::load<uint64>(buffer + 8, false), bytes_.size());
        at_ += done;
        return true;
    }
    void skip_data() override { at_ = static_cast<std::size_t>(std::min<uint64>(data_end_, bytes_.size())); }
    [[noreturn]] void fail(char const * message) override { throw std::runtime_error(message); }

private:
    std::string_view bytes_;
    std::size_t at_ = 0;
    uint64 data_end_ = 0;
    int left_;
};

} // namespace support
