#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

/// A small NTFS disk in a file, mounted for as long as the object lives with a driver that gives named streams as
/// `file:stream`.
class ntfs_image {
public:
    /// Mounts `image`, which it makes if it is missing, on the existing folder `mount_point`.
    ntfs_image(std::filesystem::path const & image, std::filesystem::path const & mount_point)
        : mount_point_(mount_point) {
        std::string const disk = "'" + image.string() + "'";
        bool ready = std::filesystem::exists(image);
        if (!ready) {
            std::ofstream(image).close();
            std::filesystem::resize_file(image, 48 * 1024 * 1024);
            ready = run("mkntfs -F -Q -s 512 -p 0 -H 0 -S 0 " + disk);
        }
        mounted_ = ready && run("ntfs-3g -o streams_interface=windows " + disk + " '" + mount_point.string() + "'");
    }
    ntfs_image(ntfs_image const &) = delete;
    ntfs_image & operator=(ntfs_image const &) = delete;
    ~ntfs_image() {
        if (mounted_) {
            std::string const folder = "'" + mount_point_.string() + "'";
            run("umount " + folder + " || fusermount -u " + folder);
        }
    }

    /// False where the tools are missing or mounting is not allowed.
    bool mounted() const { return mounted_; }

private:
    static bool run(std::string const & command) {
        return std::system(("PATH=$PATH:/usr/sbin:/sbin; { " + command + "; } >/dev/null 2>&1").c_str()) == 0;
    }

    std::filesystem::path mount_point_;
    bool mounted_ = false;
};
