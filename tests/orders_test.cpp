/// Machines of either byte order write the same bytes, so that each reads what the other wrote. The files in
/// data/orders were written by this program on a big-endian one, with RECORD_ORDERS in its environment.

#include "socle/any/integers.h"
#include "socle/io/attributes.h"
#include "socle/io/file.h"
#include "socle/io/fork_output.h"
#include "socle/nio/attributes.h"
#include "socle/nio/file.h"
#include "socle/nio/integer_codes.h"
#include "socle/stream/endian_output.h"
#include "socle/stream/vector_output.h"
#include "tests/support/ntfs_folder.h"
#include "tests/support/streams.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace {

namespace fs = std::filesystem;

fs::path const kept = TEST_DATA "/orders";
int64 const codes[] = {0, 1, 127, 128, 300, 65535, 0x123456789ABCDEF0, -2};
any::time const date(3000000000, any::time::format_mac_seconds);

void write_numbers(stream::output & out) {
    stream::big_endian_output big(out);
    stream::little_endian_output little(out);
    for (auto * const numbers : std::initializer_list<stream::endian_output *>{&big, &little}) {
        numbers->write8(0x12);
        numbers->write16(0x1234);
        numbers->write24(0x123456);
        numbers->write32(0x12345678);
        numbers->write64(0x123456789ABCDEF0);
    }
    for (int64 const value : codes)
        nio::write_wz(value, out);
    stream::binary_output bits(out);
    for (int64 const value : codes)
        any::write(value, bits);
    bits.bits().finish();
}

/// Records with a value of its own in every number.
struct records {
    records() {
        file.info.type = "TEXT";
        file.info.creator = "ttxt";
        file.info.flags = 0x1234;
        file.info.location = {1, -2};
        file.extended.extended_flags = 0x8001;
        file.extended.put_away_folder_id = 0x89ABCDEF;
        folder.info.bounds = {1, 2, -3, 4};
        folder.info.flags = 0x2345;
        folder.info.location = {-5, 6};
        folder.extended.scroll_position = {7, -8};
        folder.extended.extended_flags = 0x8002;
        folder.extended.put_away_folder_id = 0x12345678;
    }

    io::mac::file_attributes file;
    io::mac::folder_attributes folder;
};

void write_records(stream::output & out) {
    records const all;
    for (un::structure const * record : std::initializer_list<un::structure const *>{
             &all.file.info, &all.file.extended, &all.folder.info, &all.folder.extended})
        record->write(out);
}

char const * const names[] = {"numbers", "records", "picture.rsrc", "picture.info", "._picture"};
std::string const resources = "resources";

template <class Write>
std::string bytes_of(Write write) {
    byte_vector bytes;
    stream::vector_output out(bytes);
    write(out);
    return support::text(bytes);
}

void write_all(scratch const & to) {
    to.write("numbers", bytes_of(write_numbers));
    to.write("records", bytes_of(write_records));
    to.write("picture", "");
    any::path const path(to.path("picture"), true);
    io::file file(path);
    file.rsrc_fork().create(true);
    io::fork_output(file.rsrc_fork()).write(resources);
    file.rsrc_fork().close(true);
    io::attributes attributes;
    attributes.mac_file = records().file;
    attributes.created = date;
    attributes.modified = date;
    attributes.apply(path, io::attributes::with_sidecar);

    nio::file forked(to.path("picture"), nio::file::mode_closed);
    forked.create_rsrc(true, false);
    forked.write(resources.data(), static_cast<uint32>(resources.size()));
    forked.close();
    nio::attributes wide;
    auto const finder = bytes_of(write_records).substr(0, wide.finder_info.size());
    std::copy(finder.begin(), finder.end(), wide.finder_info.begin());
    nio::item item(to.path("picture"));
    wide.apply(item, true, false);
}

TEST(orders, write_the_same_bytes) {
    scratch const made;
    write_all(made);
    for (char const * name : names) {
        if (std::getenv("RECORD_ORDERS"))
            fs::copy_file(made.host(name), kept / name, fs::copy_options::overwrite_existing);
        std::ifstream in(kept / name, std::ios::binary);
        EXPECT_EQ(made.read(name), std::string(std::istreambuf_iterator<char>(in), {})) << name;
    }
}

} // namespace
