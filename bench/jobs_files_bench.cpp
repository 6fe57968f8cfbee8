// MacBinary files unpacked, and a tree catalogued.

#include "bench/jobs.h"
#include "bench/walk_data.h"
#include "socle/io/directory.h"
#include "socle/io/fork_input.h"
#include "socle/io/mac/info.h"
#include "socle/io/open_fork.h"
#include "socle/nio/attributes.h"
#include "socle/nio/directory.h"
#include "socle/nio/file.h"
#include "socle/stream/array_input.h"
#include "socle/stream/endian_input.h"

#include <chrono>
#include <cstring>
#include <dirent.h>
#include <endian.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <vector>

namespace {

namespace fs = std::filesystem;
using bench::host_file;

uint32 const archives = bench::sized(1000);
uint32 const header_size = 128;

fs::path packed() { return bench::scratch::folder().path("packed"); }

/// In memory: a host's disk takes its time with a new file where others were removed just before, as other rows do.
fs::path const & unpacked() {
    struct folder {
        fs::path path = fs::path("/dev/shm") / ("socle_bench_" + std::to_string(getpid()));
        ~folder() { fs::remove_all(path); }
    };
    static folder const one;
    return one.path;
}

std::string archive_path(uint32 i) { return (packed() / (std::to_string(i) + ".bin")).string(); }

uint32 padded(uint32 length) { return (length + header_size - 1) / header_size * header_size; }

void store(char * at, uint32 value) {
    value = htobe32(value);
    std::memcpy(at, &value, sizeof value);
}

uint32 loaded(char const * at) {
    uint32 value;
    std::memcpy(&value, at, sizeof value);
    return be32toh(value);
}

uint16 crc_16(char const * bytes, int count) {
    uint32 crc = 0;
    for (int i = 0; i < count; ++i) {
        crc ^= uint32(static_cast<unsigned char>(bytes[i])) << 8;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 0x8000) != 0 ? crc << 1 ^ 0x1021 : crc << 1;
    }
    return static_cast<uint16>(crc);
}

void store_crc(char * header) {
    uint16 const crc = htobe16(crc_16(header, 124));
    std::memcpy(header + 124, &crc, sizeof crc);
}

/// Files of about 4 KiB of data and 1 KiB of resources, made once, and an empty folder.
void prepare_archives() {
    static bool const made = [] {
        fs::create_directory(packed());
        for (uint32 i = 0; i < archives; ++i) {
            uint32 const data = 2048 + i * 4, resources = 512 + i;
            std::string const name = "file " + std::to_string(i);
            std::string bytes(header_size + padded(data) + padded(resources), '\0');
            bytes[1] = static_cast<char>(name.size());
            name.copy(bytes.data() + 2, name.size());
            std::memcpy(bytes.data() + 65, "TEXTttxt\1", 9);
            store(bytes.data() + 83, data);
            store(bytes.data() + 87, resources);
            store(bytes.data() + 91, 3'000'000'000u + i);
            store(bytes.data() + 95, 3'100'000'000u + i);
            bytes[122] = bytes[123] = '\x81';
            store_crc(bytes.data());
            std::memset(bytes.data() + header_size, 'd', data);
            std::memset(bytes.data() + header_size + padded(data), 'r', resources);
            std::ofstream(archive_path(i), std::ios::binary) << bytes;
        }
        return true;
    }();
    static_cast<void>(made);
    fs::remove_all(unpacked());
    fs::create_directory(unpacked());
}

/// Names, times and contents.
uint64 digest_unpacked() {
    uint64 sum = 0;
    for (auto const & entry : fs::directory_iterator(unpacked())) {
        std::ifstream in(entry.path(), std::ios::binary);
        std::string text = entry.path().filename().string();
        // A sidecar has the time at which it was written.
        if (entry.path().extension().empty())
            text += std::to_string(entry.last_write_time().time_since_epoch().count());
        text.append(std::istreambuf_iterator<char>(in), {});
        sum += std::hash<std::string>()(text);
    }
    return sum;
}

void write_new(int folder, std::string const & name, char const * bytes, uint32 count) {
    int const out = openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (write(out, bytes, count) != static_cast<ssize_t>(count))
        std::abort();
    close(out);
}

uint64 unpack_plain() {
    int const folder = open(unpacked().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    std::vector<char> bytes(64 << 10);
    for (uint32 i = 0; i < archives; ++i) {
        {
            host_file const in(archive_path(i), O_RDONLY | O_CLOEXEC);
            if (read(in, bytes.data(), bytes.size()) < ssize_t(header_size))
                std::abort();
        }
        char const * const header = bytes.data();
        uint32 const data = loaded(header + 83), resources = loaded(header + 87);
        std::string const name(header + 2, static_cast<unsigned char>(header[1]));
        char info[header_size] = {};
        std::memcpy(info + 65, header + 65, 14);
        std::memcpy(info + 91, header + 91, 8);
        info[101] = header[101];
        std::memcpy(info + 102, "mBIN", 4);
        info[122] = info[123] = '\x81';
        store_crc(info);
        write_new(folder, name, header + header_size, data);
        write_new(folder, name + ".rsrc", header + header_size + padded(data), resources);
        write_new(folder, name + ".info", info, header_size);
        timespec const times[] = {{0, UTIME_OMIT}, {loaded(header + 95) - 2'082'844'800l, 0}};
        utimensat(folder, name.c_str(), times, 0);
    }
    close(folder);
    return 0;
}

void write_fork(io::fork & fork, char const * bytes, uint32 count) {
    io::open_fork const opened(fork, io::fork::create_new);
    opened->write(bytes, count);
}

uint64 unpack_socle() {
    any::path const folder(any::string(platform::from_host(unpacked().string())), true);
    std::vector<char> bytes(64 << 10);
    for (uint32 i = 0; i < archives; ++i) {
        {
            io::file from = bench::file_at(archive_path(i));
            io::open_fork const opened(from.data_fork());
            if (opened->read(bytes.data(), static_cast<uint32>(bytes.size())) < header_size)
                std::abort();
        }
        stream::array_input memory(bytes.data(), header_size);
        stream::big_endian_input in(memory);
        in.skip(1);
        narrow_string name(in.read8(), '\0');
        in.read(std::span(name));
        in.skip(63 - name.size());
        io::mac::file_info finder;
        finder.type.read(in, true);
        finder.creator.read(in, true);
        finder.flags = static_cast<uint16>(in.read8() << 8);
        in.skip(1);
        finder.location.read(in, true);
        in.skip(4);
        uint32 const data = in.read32(), resources = in.read32(), created = in.read32(), modified = in.read32();
        in.skip(2);
        finder.flags |= in.read8();

        any::path path(folder);
        path.add_leaf(any::string(name, true));
        io::file to(path);
        write_fork(to.data_fork(), bytes.data() + header_size, data);
        write_fork(to.rsrc_fork(), bytes.data() + header_size + padded(data), resources);
        io::attributes & attributes = to.attributes();
        attributes.created = any::time(created, any::time::format_mac_seconds);
        attributes.modified = any::time(modified, any::time::format_mac_seconds);
        attributes.mac_file = io::mac::file_attributes(finder, {});
        attributes.apply(to.path(), io::attributes::with_sidecar);
    }
    return 0;
}

/// What a catalogue holds of a file. `Name` is the text that the walk gives.
template <class Name>
struct entry {
    Name name;
    uint64 size;
    int64 modified; // seconds since 1970
    bool read_only;
    bool hidden;
};

template <class Name>
uint64 digest(std::vector<entry<Name>> const & catalogue) {
    uint64 sum = 0;
    for (auto const & file : catalogue) {
        uint64 of = file.size * 31 + static_cast<uint64>(file.modified) * 4 + file.read_only * 2u + file.hidden;
        for (auto const unit : file.name)
            of = of * 31 + static_cast<unsigned char>(unit);
        sum += of;
    }
    return sum;
}

int64 unix_seconds(uint64 file_time) { return static_cast<int64>(file_time / 10'000'000) - 11'644'473'600; }

fs::path const & catalogue_tree() {
    static fs::path const root = [] {
        fs::path const made = bench::make_tree("catalogue");
        // One file of each folder is hidden, which the host has no bit for.
        for (auto const & found : fs::recursive_directory_iterator(made))
            if (found.path().filename() == "file 7.txt")
                setxattr(found.path().c_str(), "user.socle.attributes", "22", 2, 0);
        return made;
    }();
    return root;
}

using host_catalogue = std::vector<entry<std::string>>;

/// `bits`: whether the host is asked for what it keeps for the library, too.
void walk_plain(std::string const & path, bool bits, host_catalogue & to) {
    DIR * const listed = opendir(path.c_str());
    while (dirent const * const found = readdir(listed)) {
        if (std::strcmp(found->d_name, ".") == 0 || std::strcmp(found->d_name, "..") == 0)
            continue;
        if (found->d_type == DT_DIR) {
            walk_plain(path + '/' + found->d_name, bits, to);
            continue;
        }
        struct stat about;
        if (fstatat(dirfd(listed), found->d_name, &about, 0) != 0)
            std::abort();
        char value[8];
        std::string const file = path + '/' + found->d_name;
        ssize_t const length = bits ? getxattr(file.c_str(), "user.socle.attributes", value, sizeof value) : 0;
        bool const hidden = length == 2 && value[1] == '2';
        to.push_back({found->d_name, static_cast<uint64>(about.st_size), about.st_mtim.tv_sec,
                      (about.st_mode & S_IWUSR) == 0, hidden});
    }
    closedir(listed);
}

uint64 catalogue_plain() {
    host_catalogue made;
    walk_plain(catalogue_tree().string(), true, made);
    return digest(made);
}

/// What the host has no bit for is put in: one file of each folder.
uint64 with_hidden(host_catalogue && made) {
    for (auto & file : made)
        file.hidden = file.name == "file 7.txt";
    return digest(made);
}

uint64 catalogue_host() {
    host_catalogue made;
    walk_plain(catalogue_tree().string(), false, made);
    return with_hidden(std::move(made));
}

uint64 catalogue_filesystem() {
    host_catalogue made;
    for (auto const & found : fs::recursive_directory_iterator(catalogue_tree())) {
        if (!found.is_regular_file())
            continue;
        auto const modified = std::chrono::file_clock::to_sys(found.last_write_time());
        bool const writable = (found.status().permissions() & fs::perms::owner_write) != fs::perms::none;
        made.push_back({found.path().filename().string(), found.file_size(),
                        std::chrono::floor<std::chrono::seconds>(modified).time_since_epoch().count(), !writable,
                        false});
    }
    return with_hidden(std::move(made));
}

void walk_io(io::directory const & folder, std::vector<entry<any::string>> & to) {
    for (auto found = folder.begin(), end = folder.end(); found != end; ++found) {
        if (found.is_directory()) {
            walk_io(io::directory(*found), to);
            continue;
        }
        found.load_attributes(io::attributes::no_sidecar);
        io::attributes const & about = found->attributes();
        to.push_back({found->path().leaf(), found->size(), unix_seconds(about.modified.value().file_time()),
                      about.read_only.value(), (about.win32.value().flags & 2) != 0});
    }
}

uint64 catalogue_io() {
    std::vector<entry<any::string>> made;
    walk_io(io::directory(any::path(any::string(platform::from_host(catalogue_tree().string())), true)), made);
    return digest(made);
}

void walk_nio(nio::directory const & folder, std::vector<entry<wide_string>> & to) {
    for (auto found = folder.begin(), end = folder.end(); found != end; ++found) {
        if (found.is_directory()) {
            walk_nio(nio::directory(*found), to);
            continue;
        }
        nio::attributes about;
        found.load(about);
        to.push_back({found->substr(found->rfind(u'\\') + 1), nio::file(*found, nio::file::mode_read).size(),
                      unix_seconds(about.modified.file_time()), about.read_only, (about.file_attributes & 2) != 0});
    }
}

uint64 catalogue_nio() {
    std::vector<entry<wide_string>> made;
    walk_nio(nio::directory(platform::from_host(catalogue_tree().string())), made);
    return digest(made);
}

[[maybe_unused]] bool const registered = [] {
    using namespace bench;
    job const unpacking{"job: unpack 1,000 MacBinary files", archives, unpack_plain, digest_unpacked, prepare_archives};
    add(unpacking, "limit: read(2), openat and write(2)", unpack_plain);
    add(unpacking, "socle, io::file", unpack_socle);
    job const catalogue{"job: catalogue 20,000 files", walk_folders * walk_files, catalogue_plain};
    add(catalogue, "limit: readdir, fstatat and getxattr", catalogue_plain);
    add(catalogue, "readdir and fstatat, no hidden bit", catalogue_host);
    add(catalogue, "std::filesystem, no hidden bit", catalogue_filesystem);
    add(catalogue, "socle, io::directory", catalogue_io);
    add(catalogue, "socle, nio::directory", catalogue_nio);
    return true;
}();

} // namespace
