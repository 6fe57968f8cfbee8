#include "socle/nio/backup_filter_internal.h"

#include "socle/basic/internal/byte_order.h"
#include "socle/platform/backup.h"

#include <algorithm>
#include <string_view>

namespace nio {

namespace {

constexpr uint32 head_size = 20;
constexpr uint32 size_offset = 8;
constexpr uint32 name_size_offset = 16;
constexpr uint32 longest_name = 65536; // bytes, more than any file system gives a name

template <class Number>
Number number_at(char const * bytes) {
    return basic::load<Number>(bytes, false);
}

/// Whether the name at `bytes`, in 16-bit units, begins with `text`.
bool begins_with(char const * bytes, std::size_t size, std::string_view text) {
    if (size / 2 < text.size())
        return false;
    for (std::size_t i = 0; i < text.size(); ++i)
        if (number_at<uint16>(bytes + 2 * i) != static_cast<unsigned char>(text[i]))
            return false;
    return true;
}

} // namespace

uint32 backup_filter::read(record_source & source, char * buffer, uint32 size) {
    uint32 got = 0;
    while (got < size && !ended_) {
        if (head_left_ == 0 && data_left_ == 0 && !find_record(source))
            break;
        uint32 const wanted = size - got;
        if (head_left_ > 0) {
            uint32 const count = std::min(wanted, head_left_);
            std::copy_n(head_.end() - head_left_, count, buffer + got);
            head_left_ -= count;
            got += count;
            continue;
        }
        auto const count = static_cast<uint32>(std::min<uint64>(wanted, data_left_));
        uint32 done = 0;
        if (!source.read(buffer + got, count, done))
            source.fail("cannot read NTFS stream");
        if (done == 0)
            break;
        done = std::min(done, count);
        data_left_ -= done;
        got += done;
    }
    return got;
}

/// Goes to the next record that is handed on. False at the end of the sequence.
bool backup_filter::find_record(record_source & source) {
    for (;;) {
        uint32 done = 0;
        head_.resize(head_size);
        if (!source.read(head_.data(), head_size, done) || (done != 0 && done != head_size))
            source.fail("invalid NTFS stream structure");
        if (done == 0) {
            ended_ = true;
            return false;
        }
        auto const name_size = number_at<uint32>(head_.data() + name_size_offset);
        if (name_size > longest_name)
            source.fail("invalid NTFS stream name");
        head_.resize(head_size + name_size);
        if (name_size > 0 && (!source.read(head_.data() + head_size, name_size, done) || done != name_size))
            source.fail("invalid NTFS stream name");
        auto const data_size = number_at<uint64>(head_.data() + size_offset);
        if (left_out()) {
            source.skip_data();
        } else if (data_size > 0) {
            head_left_ = static_cast<uint32>(head_.size());
            data_left_ = data_size;
            return true;
        }
    }
}

bool backup_filter::left_out() const {
    auto const id = number_at<uint32>(head_.data());
    char const * const name = head_.data() + head_size;
    std::size_t const size = head_.size() - head_size;
    return id == platform::BACKUP_DATA
           || (id == platform::BACKUP_ALTERNATE_DATA
               && (begins_with(name, size, ":AFP_AfpInfo") || begins_with(name, size, ":AFP_Resource")));
}

} // namespace nio
