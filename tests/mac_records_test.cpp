#include "socle/io/exception.h"
#include "socle/io/mac/attributes.h"
#include "socle/stream/array_input.h"
#include "socle/stream/vector_input.h"
#include "socle/stream/vector_output.h"
#include "tests/support/streams.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using namespace io::mac;
using support::pattern;

byte_vector written(un::structure const & record) {
    byte_vector data;
    stream::vector_output out(data);
    EXPECT_EQ(record.write(out), record.size());
    return data;
}

template <class Record>
Record from(byte_vector const & data) {
    Record record;
    stream::vector_input in(data);
    EXPECT_EQ(record.read(in, false), record.size());
    EXPECT_EQ(in.tell(), std::min<uint64>(data.size(), record.size()));
    return record;
}

TEST(os_type, is_made_of_texts_and_numbers) {
    struct {
        os_type type;
        uint32 value;
        narrow_string text;
    } const table[] = {
        {os_type(), 0x3F3F3F3F, "????"},
        {"TEXT", 0x54455854, "TEXT"},
        {narrow_string("a\0b", 3), 0x61006200, narrow_string("a\0b\0", 4)},
        {-2, 0xFFFFFFFE, "\xFF\xFF\xFF\xFE"},
        {uint32(0x8000000A), 0x8000000A, narrow_string("\x80\0\0\n", 4)},
    };
    for (auto const & row : table) {
        EXPECT_EQ(row.type.value, row.value);
        EXPECT_EQ(row.type.to_string(), row.text);
        EXPECT_EQ(written(row.type), support::bytes(row.text));
        EXPECT_EQ(from<os_type>(support::bytes(row.text)).value, row.value);
    }
}

TEST(os_type, compares_with_texts_and_numbers_too) {
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

template <class Record>
std::unique_ptr<un::structure> fresh() {
    return std::make_unique<Record>();
}

std::string const zeros(16, '\0');

TEST(mac_records, write_what_they_read_and_stand_behind_it) {
    struct {
        std::unique_ptr<un::structure> (*fresh)();
        std::string initial;
        std::string bytes;
    } const table[] = {
        {fresh<point>, zeros.substr(12), "\xFF\xFE\x7F\x80"},
        {fresh<rect>, zeros.substr(8), {"\0\1\xFF\xFE\3\4\0\4", 8}},
        {fresh<file_info>, "????????" + zeros.substr(8), {"TEXTCWIE\x80\x44\xFF\xFF\1\2\0\0", 16}},
        {fresh<folder_info>, zeros, {"\0\1\xFF\xFE\3\4\0\4\x12\x34\0\5\0\6\0\0", 16}},
        {fresh<extended_file_info>, zeros, {"\0\0\0\0\0\0\0\0\x80\1\2\3\xFF\xFE\xFD\xFC", 16}},
        {fresh<extended_folder_info>, zeros, {"\7\x8\xFF\xFD\0\0\0\0\x80\1\2\3\0\0\0\x10", 16}},
    };
    for (auto const & row : table) {
        auto const record = row.fresh();
        EXPECT_TRUE(record->valid());
        EXPECT_EQ(support::text(written(*record)), row.initial);
        std::string const bytes = "<" + row.bytes + ">";
        support::in_blocks<support::unlent, support::drops> source(bytes); // a block may not come in pieces
        EXPECT_EQ(source.read(), '<');
        EXPECT_EQ(record->read(source, true), row.bytes.size());
        EXPECT_EQ(source.read(), '>');
        EXPECT_EQ(support::text(written(*record)), row.bytes);
    }
}

TEST(mac_records, have_their_members_in_place) {
    auto const place = from<point>({0xFF, 0xFE, 1, 2});
    EXPECT_EQ(place.v, -2);
    EXPECT_EQ(place.h, 0x102);
    EXPECT_EQ(written(point(-2, 0x102)), written(place));
    EXPECT_EQ(written(rect(1, 2, 3, 4)), (byte_vector{0, 1, 0, 2, 0, 3, 0, 4}));
    byte_vector data(16);
    std::iota(data.begin(), data.end(), static_cast<unsigned char>(0));
    file_attributes const file(from<file_info>(data), from<extended_file_info>(data));
    EXPECT_EQ(file.info.type.value, 0x00010203u);
    EXPECT_EQ(file.info.creator.value, 0x04050607u);
    EXPECT_EQ(file.info.flags, 0x0809);
    EXPECT_EQ(file.info.location.v, 0x0A0B);
    EXPECT_EQ(file.info.location.h, 0x0C0D);
    EXPECT_EQ(file.extended.extended_flags, 0x0809);
    EXPECT_EQ(file.extended.reserved2, 0x0A0B);
    EXPECT_EQ(file.extended.put_away_folder_id, 0x0C0D0E0Fu);
    folder_attributes const folder(from<folder_info>(data), from<extended_folder_info>(data));
    EXPECT_EQ(folder.info.bounds.top, 0x0001);
    EXPECT_EQ(folder.info.bounds.left, 0x0203);
    EXPECT_EQ(folder.info.bounds.bottom, 0x0405);
    EXPECT_EQ(folder.info.bounds.right, 0x0607);
    EXPECT_EQ(folder.info.flags, 0x0809);
    EXPECT_EQ(folder.info.location.v, 0x0A0B);
    EXPECT_EQ(folder.extended.scroll_position.h, 0x0203);
    EXPECT_EQ(folder.extended.extended_flags, 0x0809);
    EXPECT_EQ(folder.extended.put_away_folder_id, 0x0C0D0E0Fu);
}

TEST(mac_records, numbers_behind_the_end_have_all_bits_set) {
    for (std::size_t length = 0; length < 4; ++length) {
        auto const place = from<point>(byte_vector(length));
        EXPECT_EQ(place.v, length < 2 ? -1 : 0);
        EXPECT_EQ(place.h, -1);
    }
    EXPECT_EQ(from<rect>(byte_vector(7)).right, -1);
    EXPECT_EQ(from<rect>(byte_vector(7)).bottom, 0);
    auto const folder = from<folder_info>({});
    EXPECT_EQ(folder.flags, 0xFFFF);
    EXPECT_EQ(folder.bounds.top, -1);
    EXPECT_EQ(from<extended_file_info>(byte_vector(14)).put_away_folder_id, 0xFFFFFFFF);
    EXPECT_EQ(from<extended_file_info>(byte_vector(5)).extended_flags, 0xFFFF);
    EXPECT_EQ(from<extended_folder_info>(byte_vector(6)).scroll_position.h, 0);
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
