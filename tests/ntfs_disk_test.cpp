// Files on a mounted NTFS disk, whose driver gives streams, attribute bits and times of its own.

#include "socle/nio/attributes.h"
#include "socle/nio/file.h"
#include "socle/platform/errors.h"
#include "socle/platform/files.h"
#include "socle/platform/host.h"
#include "tests/support/ntfs_image.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <sys/xattr.h>

namespace {

using namespace platform;
namespace fs = std::filesystem;

class ntfs_disk : public testing::Test {
protected:
    ~ntfs_disk() override { detach_volume('N'); }

    void SetUp() override { mount(); }

    /// Makes N: of a folder on the disk, as it was left.
    void mount() {
        detach_volume('N');
        disk_.reset();
        fs::create_directory(folder_.host("volume"));
        disk_.emplace(folder_.host("image"), folder_.host("volume"));
        if (!disk_->mounted())
            GTEST_SKIP() << "an NTFS image cannot be made or mounted here";
        ASSERT_EQ(attach_volume('N', folder_.host("volume"), "NTFS"), 0u);
    }

    scratch folder_;
    std::optional<ntfs_image> disk_;
};

wide_string name_of(int i) {
    std::string const digits = std::to_string(i);
    return u"N:\\" + wide_string(digits.begin(), digits.end());
}

/// Every time, bit and byte another one.
nio::attributes attributes_of(int i) {
    nio::attributes set;
    auto const n = static_cast<uint64>(i);
    set.modified.set(126'227'808'000'000'000 + n * 10'000'001, nio::time::format_file_time);
    set.created.set(115'000'000'000'000'000 + n * 20'000'003, nio::time::format_file_time);
    set.read_only = i % 3 == 0;
    set.file_attributes = (i % 2 == 0 ? FILE_ATTRIBUTE_HIDDEN : 0) | (i % 5 == 0 ? FILE_ATTRIBUTE_SYSTEM : 0)
                          | (i % 7 == 0 ? FILE_ATTRIBUTE_ARCHIVE : 0);
    for (std::size_t at = 0; at < set.finder_info.size(); ++at)
        set.finder_info[at] = static_cast<unsigned char>(i + static_cast<int>(at) * 7);
    return set;
}

TEST_F(ntfs_disk, keeps_all_of_a_thousand_files_over_an_unmount) {
    for (int i = 0; i < 1000; ++i) {
        nio::file file(name_of(i), 4);
        file.write("bytes", 5);
        file.close();
        file.create_rsrc(true, true);
        file.write("fork", 4);
        file.close();
        attributes_of(i).apply(file, true, true);
    }
    mount();
    for (int i = 0; i < 1000 && !HasFailure(); ++i) {
        SCOPED_TRACE(i);
        nio::file file(name_of(i), 0);
        nio::attributes const set = attributes_of(i);
        nio::attributes const got(file);
        EXPECT_EQ(got.modified.file_time(), set.modified.file_time());
        EXPECT_EQ(got.created.file_time(), set.created.file_time());
        EXPECT_EQ(got.read_only, set.read_only);
        uint32 const bits = set.file_attributes | (set.read_only ? FILE_ATTRIBUTE_READONLY : 0);
        EXPECT_EQ(got.file_attributes, bits == 0 ? FILE_ATTRIBUTE_NORMAL : bits);
        EXPECT_EQ(got.finder_info, set.finder_info);
        EXPECT_EQ(nio::file(name_of(i) + u":AFP_Resource", 1).size(), 4u);
    }
}

// The driver takes a system file without bytes for a pipe, and one of a single byte for a socket.
TEST_F(ntfs_disk, a_small_system_file_stays_a_file) {
    for (uint32 const size : {0u, 1u, 2u}) {
        nio::file file(name_of(int(size)), 4);
        file.write("xy", size);
        file.close();
        EXPECT_TRUE(SetFileAttributesW(file.path(), FILE_ATTRIBUTE_SYSTEM));
    }
    // One that another program has made so.
    EXPECT_TRUE(nio::file(name_of(3), 4).is_open());
    EXPECT_EQ(setxattr(folder_.host("volume/3").c_str(), "system.ntfs_attrib", "\4\0\0", 4, 0), 0);
    mount();
    for (int const i : {0, 1}) {
        EXPECT_EQ(GetFileAttributesW(name_of(i)), FILE_ATTRIBUTE_NORMAL);
        EXPECT_EQ(nio::file(name_of(i), 1).size(), uint64(i));
    }
    EXPECT_EQ(GetFileAttributesW(name_of(2)), FILE_ATTRIBUTE_SYSTEM);
    EXPECT_EQ(GetFileKindW(name_of(3)), FILE_ATTRIBUTE_DEVICE);
    EXPECT_TRUE(SetFileAttributesW(name_of(3), FILE_ATTRIBUTE_HIDDEN));
    mount();
    EXPECT_EQ(nio::file(name_of(3), 1).size(), 0u);
}

TEST_F(ntfs_disk, a_backup_goes_to_a_name_that_has_just_been_deleted) {
    nio::file source(name_of(0), 4);
    source.close();
    nio::file(name_of(0) + u":note", 4).write("note", 4);
    std::string bytes(1000, '\0');
    source.open_ntfs();
    bytes.resize(source.read_ntfs(bytes.data(), 1000));
    EXPECT_EQ(bytes.size(), 20u + 22 + 4);
    source.close_ntfs();
    for (int round = 0; round < 3; ++round) {
        nio::file target(name_of(1), 4);
        target.close();
        target.open_ntfs_w();
        target.write_ntfs(bytes.data(), static_cast<uint32>(bytes.size()));
        target.close_ntfs();
        EXPECT_EQ(nio::file(name_of(1) + u":note", 1).size(), 4u);
        target.unlink(true);
    }
}

} // namespace
