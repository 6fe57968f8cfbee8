/// A backup from anywhere that is written to a file with streams, and read from it again, beside a model.

#include "socle/platform/posix/streams/backup_records.h"
#include "fuzz/support/feed.h"
#include "socle/platform/backup.h"
#include "socle/platform/errors.h"
#include "socle/platform/stream_names.h"

#include <limits>
#include <map>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace platform;
using fuzz::check;
using fuzz::number_at;

struct contents {
    narrow_string data;
    std::map<wide_string, narrow_string> streams;
    bool operator==(contents const &) const = default;
};

/// A file in memory, whose streams are such files too.
class memory_file : public posix::named_streams {
public:
    explicit memory_file(contents const & held) : data_(make(held.data)) {
        for (auto const & [name, bytes] : held.streams)
            streams_.emplace(name, make(bytes));
    }

    posix::backup_file shown() const { return {data_.get(), this}; }

    contents held() const {
        contents result{bytes_of(data_), {}};
        for (auto const & [name, stream] : streams_)
            result.streams[name] = bytes_of(stream);
        return result;
    }

    system_code locate(posix::host::at const &, wide_string const & name, purpose wanted,
                       posix::stream_place & place) const override {
        auto found = streams_.find(name);
        if (found == streams_.end() && wanted != purpose::create)
            return ERROR_FILE_NOT_FOUND;
        if (found == streams_.end())
            found = streams_.emplace(name, make("")).first;
        place.name = "/proc/self/fd/" + std::to_string(found->second.get());
        return {};
    }
    system_code list(posix::host::at const &, std::vector<wide_string> & names) const override {
        for (auto const & each : streams_)
            names.push_back(each.first);
        return {};
    }
    bool hides(std::string_view, bool) const override { return false; }
    system_code find_belongings(posix::host::at const &, belongings &) const override { return {}; }
    system_code hold(posix::host::at const &, posix::descriptor_guard &) const override { return {}; }
    void moved(posix::host::at const &) const override {}
    system_code sweep() const override { return {}; }

private:
    static posix::descriptor_guard make(narrow_string const & bytes) {
        posix::descriptor_guard file(memfd_create("stream", MFD_CLOEXEC));
        check(write(file.get(), bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()));
        return file;
    }
    static narrow_string bytes_of(posix::descriptor_guard const & file) {
        struct stat status {};
        check(fstat(file.get(), &status) == 0);
        narrow_string bytes(static_cast<std::size_t>(status.st_size), '\0');
        check(pread(file.get(), bytes.data(), bytes.size(), 0) == status.st_size);
        return bytes;
    }

    posix::descriptor_guard data_;
    mutable std::map<wide_string, posix::descriptor_guard> streams_;
};

/// What the sequence makes of a file, and why it is not taken to its end.
uint32 restore(std::string_view sequence, contents & file) {
    while (sequence.size() >= 20) {
        uint64 const kind = number_at(sequence, 0, 4), size = number_at(sequence, 8, 8);
        auto const name_size = static_cast<std::size_t>(number_at(sequence, 16, 4));
        if (kind == 0 || kind > 10 || size > uint64{std::numeric_limits<int64>::max()} || name_size > 1024
            || name_size % 2 != 0)
            return ERROR_INVALID_DATA;
        if (sequence.size() < 20 + name_size)
            return 0;
        auto const name = fuzz::feed::units(sequence.substr(20, name_size));
        sequence.remove_prefix(20 + name_size);
        auto const data = sequence.substr(0, static_cast<std::size_t>(std::min<uint64>(size, sequence.size())));
        sequence.remove_prefix(data.size());
        narrow_string * target = kind == BACKUP_DATA ? &file.data : nullptr;
        if (kind == BACKUP_ALTERNATE_DATA) {
            wide_string leaf;
            if (!name.starts_with(u':') || parse_stream_name(std::u16string_view(name).substr(1), leaf) || leaf.empty())
                return ERROR_INVALID_DATA;
            target = &(file.streams[leaf] = "");
        }
        if (target == nullptr)
            continue;
        target->replace(0, data.size(), data);
        if (data.size() == size)
            target->resize(data.size());
    }
    return 0;
}

system_code write_all(memory_file const & file, std::string_view sequence, std::string_view sizes) {
    posix::backup_writer writer;
    for (std::size_t turn = 0; !sequence.empty(); ++turn) {
        uint32 const step = fuzz::block_size(sizes, turn);
        auto const block = sequence.substr(0, step);
        uint32 done = 0;
        system_code const code = writer.write(file.shown(), block.data(), static_cast<uint32>(block.size()), done);
        check(!code ? done == block.size() : done <= block.size());
        if (code) {
            check(writer.write(file.shown(), block.data(), 1, done) == code && done == 0);
            return code;
        }
        sequence.remove_prefix(block.size());
    }
    return {};
}

narrow_string read_all(memory_file const & file, std::string_view sizes) {
    posix::backup_reader reader;
    narrow_string all;
    for (std::size_t turn = 0;; ++turn) {
        uint32 const size = fuzz::block_size(sizes, turn);
        narrow_string block(size, '\0');
        uint32 done = 0;
        check(!reader.read(file.shown(), block.data(), size, done) && done <= size);
        all.append(block, 0, done);
        if (done < size)
            return all;
    }
}

} // namespace

void fuzz::run(std::string_view input) {
    feed in(input);
    narrow_string const sizes = in.text();
    auto const sequence = in.rest();
    contents const before{"what was there", {{u"note", "something older"}, {u"kept", "this"}}};
    contents expected = before;
    uint32 const refused = restore(sequence, expected);
    memory_file const file(before);
    check(write_all(file, sequence, sizes) == refused);
    check(file.held() == expected);

    // Another file gets the same from what is read of the first.
    contents copy;
    check(restore(read_all(file, sizes), copy) == 0 && copy == expected);
}
