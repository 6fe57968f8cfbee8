#include "socle/platform/posix/streams/backup_records.h"

#include "socle/basic/internal/byte_order.h"
#include "socle/platform/backup.h"
#include "socle/platform/errors.h"
#include "socle/platform/stream_names.h"

#include <algorithm>
#include <limits>

namespace platform::posix {

namespace {

constexpr std::size_t head_size = 20;
/// `BACKUP_SPARSE_BLOCK` to `BACKUP_TXFS_DATA` and what lies between: things that files here do not have.
constexpr uint32 last_kind = 10;
/// More than the longest name of a stream with its type takes.
constexpr uint32 longest_name = 1024;

template <class Number>
void append_number(narrow_string & text, Number value) {
    text.resize(text.size() + sizeof value);
    basic::store(text.data() + text.size() - sizeof value, value, false);
}

template <class Number>
Number number_at(narrow_string const & text, std::size_t at) {
    return basic::load<Number>(text.data() + at, false);
}

std::size_t name_size(narrow_string const & head) { return number_at<uint32>(head, 16); }

/// Opens the stream that the name of a record stands for, empty and for this writer alone.
system_code create_stream(backup_file const & file, narrow_string const & head, descriptor_guard & stream) {
    wide_string text;
    for (std::size_t at = head_size; at < head.size(); at += 2)
        text += static_cast<char16_t>(number_at<uint16>(head, at));
    wide_string name;
    if (!text.starts_with(u':') || parse_stream_name(std::u16string_view(text).substr(1), name) || name.empty())
        return ERROR_INVALID_DATA;
    if (file.streams == nullptr)
        return ERROR_NOT_SUPPORTED;
    if (system_code const code = open_stream(*file.streams, file.at(), name, O_WRONLY, stream))
        return code;
    return last_code_if(host::ftruncate(stream.get(), 0) != 0);
}

} // namespace

system_code backup_reader::read(backup_file const & file, char * buffer, uint32 size, uint32 & done) {
    done = 0;
    system_code code = started_ ? system_code() : start(file);
    while (!code && done < size) {
        if (head_done_ < head_.size()) {
            std::size_t const n = head_.copy(buffer + done, size - done, head_done_);
            head_done_ += n;
            done += static_cast<uint32>(n);
        } else if (left_ > 0) {
            uint32 got = 0;
            code = read_data(file.descriptor, buffer + done, size - done, got);
            done += got;
        } else {
            code = next_record(file);
            if (head_.empty())
                break;
        }
    }
    return code;
}

system_code backup_reader::skip(uint64 size, uint64 & done) {
    done = std::min(size, head_done_ < head_.size() ? 0 : left_);
    position_ += done;
    left_ -= done;
    return done == size ? system_code() : ERROR_SEEK;
}

system_code backup_reader::start(backup_file const & file) {
    struct stat status {};
    if (host::fstat(file.descriptor, &status) != 0)
        return last_code();
    if (file.streams != nullptr) {
        if (system_code const code = file.streams->list(file.at(), names_))
            return code;
        std::reverse(names_.begin(), names_.end());
    }
    unnamed_ = S_ISREG(status.st_mode);
    started_ = true;
    return {};
}

/// Makes the head of the next record; an empty one if there is none.
system_code backup_reader::next_record(backup_file const & file) {
    head_.clear();
    head_done_ = 0;
    position_ = 0;
    stream_ = descriptor_guard();
    struct stat status {};
    if (unnamed_) {
        unnamed_ = false;
        if (host::fstat(file.descriptor, &status) != 0)
            return last_code();
        set_head(BACKUP_DATA, static_cast<uint64>(status.st_size), {});
        return {};
    }
    while (!names_.empty()) {
        if (file.streams == nullptr)
            return ERROR_PATH_NOT_FOUND; // it left its volume since then
        wide_string const name = names_.back();
        names_.pop_back();
        system_code const code = open_stream(*file.streams, file.at(), name, O_RDONLY, stream_);
        if (code == ERROR_FILE_NOT_FOUND)
            continue; // Removed since the names were listed.
        if (code)
            return code;
        if (host::fstat(stream_.get(), &status) != 0)
            return last_code();
        set_head(BACKUP_ALTERNATE_DATA, static_cast<uint64>(status.st_size), u':' + name + u":$DATA");
        return {};
    }
    return {};
}

system_code backup_reader::read_data(int own, char * buffer, uint32 size, uint32 & done) {
    int const source = stream_.get() < 0 ? own : stream_.get();
    auto const wanted = static_cast<std::size_t>(std::min<uint64>(size, left_));
    ssize_t const got = host::pread(source, buffer, wanted, static_cast<off_t>(position_));
    if (got <= 0)
        return got == 0 ? ERROR_INVALID_DATA : last_code();
    done = static_cast<uint32>(got);
    position_ += done;
    left_ -= done;
    return {};
}

void backup_reader::set_head(uint32 kind, uint64 size, wide_string const & name) {
    append_number(head_, kind);
    append_number(head_, uint32{0});
    append_number(head_, size);
    append_number(head_, static_cast<uint32>(name.size() * 2));
    for (char16_t unit : name)
        append_number(head_, uint16{unit});
    left_ = size;
}

system_code backup_writer::write(backup_file const & file, char const * buffer, uint32 size, uint32 & done) {
    done = 0;
    while (done < size) {
        if (refused_)
            return refused_;
        system_code code;
        if (!head_complete()) {
            std::size_t const whole = head_.size() < head_size ? head_size : head_size + name_size(head_);
            std::size_t const n = std::min<std::size_t>(whole - head_.size(), size - done);
            head_.append(buffer + done, n);
            done += static_cast<uint32>(n);
            code = head_.size() < head_size ? system_code() : start_record(file);
            refused_ = code;
        } else {
            uint32 written = 0;
            code = write_data(buffer + done, static_cast<uint32>(std::min<uint64>(size - done, left_)), written);
            done += written;
        }
        if (!code && head_complete() && left_ == 0)
            code = finish_record();
        if (code)
            return code;
    }
    return {};
}

bool backup_writer::head_complete() const {
    return head_.size() >= head_size && head_.size() == head_size + name_size(head_);
}

/// Checks what there is of a head, and when it is complete opens what its data go to.
system_code backup_writer::start_record(backup_file const & file) {
    uint32 const kind = number_at<uint32>(head_, 0);
    left_ = number_at<uint64>(head_, 8);
    position_ = 0;
    if (kind == 0 || kind > last_kind || left_ > uint64{std::numeric_limits<int64>::max()}
        || name_size(head_) > longest_name || name_size(head_) % 2 != 0)
        return ERROR_INVALID_DATA;
    if (!head_complete() || kind != BACKUP_ALTERNATE_DATA) {
        target_ = kind == BACKUP_DATA ? file.descriptor : -1;
        return {};
    }
    system_code const code = create_stream(file, head_, stream_);
    target_ = stream_.get();
    return code;
}

system_code backup_writer::write_data(char const * buffer, uint32 size, uint32 & done) {
    done = size;
    while (target_ >= 0 && size > 0) {
        ssize_t const written = host::pwrite(target_, buffer, size, static_cast<off_t>(position_));
        if (written <= 0) {
            done -= size;
            return written == 0 ? ERROR_IO_DEVICE : last_code();
        }
        buffer += written;
        size -= static_cast<uint32>(written);
        position_ += static_cast<uint64>(written);
        left_ -= static_cast<uint64>(written);
    }
    left_ -= size;
    return {};
}

system_code backup_writer::finish_record() {
    bool const own = target_ >= 0 && stream_.get() < 0;
    // A named stream was emptied when it was opened; the file itself may have been longer.
    system_code const code = last_code_if(own && host::ftruncate(target_, static_cast<off_t>(position_)) != 0);
    head_.clear();
    stream_ = descriptor_guard();
    target_ = -1;
    return code;
}

} // namespace platform::posix
