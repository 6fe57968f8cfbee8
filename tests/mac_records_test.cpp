#include "socle/io/exception.h"
#include "socle/io/mac/attributes.h"
#include "socle/stream/array_input.h"
#include "socle/stream/vector_input.h"
#include "socle/stream/vector_output.h"
#include "tests/support/streams.h"

#include <gtest/gtest.h>

namespace {

using namespace io::mac;

std::string stored(un::structure const & record) {
    byte_vector data;
    stream::vector_output out(data);
    EXPECT_EQ(record.write(out), record.size());
    return support::text(data);
}

/// The record at the start of `data`, which reads alike from open memory and byte by byte from a caller's class.
template <class Record>
Record from(byte_vector const & data) {
    Record record, again;
    stream::vector_input in(data);
    EXPECT_EQ(record.read(in, false), record.size());
    EXPECT_EQ(in.tell(), std::min<uint64>(data.size(), record.size()));
    stream::vector_input beneath(data);
    support::failing_source source(beneath, 1000);
    again.read(source, false);
    EXPECT_EQ(stored(again), stored(record));
    return record;
}

TEST(os_type, compares_with_texts_and_numbers_too) {
    EXPECT_EQ(os_type().value, 0x3F3F3F3Fu);
    EXPECT_EQ(os_type(narrow_string("a\0b", 3)).value, 0x61006200u);
    EXPECT_EQ(os_type(-2).value, 0xFFFFFFFE);
    os_type const type("TEXT");
    EXPECT_TRUE(type == "TEXT" && "TEXT" == type && type == "TEXTURE" && type == 0x54455854);
    EXPECT_TRUE(type != "text" && type != os_type() && type != 0);
    EXPECT_TRUE(type > "APPL" && os_type(0) < type);
}

TEST(os_type, a_short_stream_is_an_error_only_if_asked_for) {
    uint32 const lenient[] = {0xFFFFFFFF, 0x41FFFFFF, 0x4142FFFF, 0x414243FF};
    for (uint32 length = 0; length < 4; ++length) {
        os_type type("keep");
        stream::array_input strict("ABC", length);
        EXPECT_THROW(type.read(strict, true), io::exception);
        EXPECT_EQ(type.to_string(), "keep");
        stream::array_input in("ABC", length);
        EXPECT_EQ(type.read(in, false), 4u);
        EXPECT_EQ(type.value, lenient[length]);
    }
}

TEST(mac_records, start_with_zeros_and_unknown_types) {
    std::string const zeros(16, '\0');
    EXPECT_EQ(stored(point()) + stored(rect()), zeros.substr(4));
    EXPECT_EQ(stored(file_info()), "????????" + zeros.substr(8));
    EXPECT_EQ(stored(folder_info()), zeros);
    EXPECT_EQ(stored(extended_file_info()) + stored(extended_folder_info()), zeros + zeros);
    EXPECT_EQ(stored(point(-2, 0x102)) + stored(rect(1, 2, 3, 4)), std::string("\xFF\xFE\1\2\0\1\0\2\0\3\0\4", 12));
    EXPECT_TRUE(file_info().valid());
}

TEST(mac_records, have_their_fields_at_their_places) {
    byte_vector const data = support::bytes("ABCDEFGHIJKLMNOPQ");
    std::string const zeros(8, '\0');
    EXPECT_EQ(stored(from<file_info>(data)), "ABCDEFGHIJKLMN" + zeros.substr(6));
    EXPECT_EQ(stored(from<folder_info>(data)), "ABCDEFGHIJKLMN" + zeros.substr(6));
    EXPECT_EQ(stored(from<extended_file_info>(data)), zeros + "IJKLMNOP");
    EXPECT_EQ(stored(from<extended_folder_info>(data)), "ABCD" + zeros.substr(4) + "IJKLMNOP");
    EXPECT_EQ(from<file_info>(data).location.h, 'M' << 8 | 'N');
    EXPECT_EQ(from<rect>(data).right, 'G' << 8 | 'H');
}

TEST(mac_records, numbers_behind_the_end_have_all_bits_set) {
    EXPECT_EQ(stored(from<point>(byte_vector(1))), "\xFF\xFF\xFF\xFF");
    EXPECT_EQ(stored(from<rect>(byte_vector(7))), std::string("\0\0\0\0\0\0\xFF\xFF", 8));
    EXPECT_EQ(stored(from<folder_info>({})), std::string(14, '\xFF') + std::string(2, '\0'));
    EXPECT_EQ(stored(from<extended_file_info>(byte_vector(5))), std::string(8, '\0') + std::string(8, '\xFF'));
    EXPECT_EQ(from<extended_folder_info>(byte_vector(6)).reserved2, 0xFFFF);
}

TEST(mac_records, errors_of_the_stream_pass_through) {
    byte_vector const data(16);
    stream::vector_input beneath(data);
    support::failing_source source(beneath, 3);
    file_info info;
    EXPECT_THROW(info.read(source, true), support::failure);
    support::recording_target target(2);
    EXPECT_THROW(info.write(target), support::failure);
    EXPECT_EQ(target.data, "????");
    EXPECT_EQ(target.writes, (std::vector<uint32>{4}));
}

TEST(mac_records, tell_their_size_without_an_object) {
    char const sizes[] = {os_type::fixed_size(), point::fixed_size(), rect::fixed_size()};
    EXPECT_EQ(std::string(sizes, 3), "\4\4\x8");
    uint32 const & constant = info::info_size; // bound to the exported object
    EXPECT_EQ(constant, file_info::fixed_size());
    EXPECT_EQ(constant, folder_info::fixed_size());
}

} // namespace
