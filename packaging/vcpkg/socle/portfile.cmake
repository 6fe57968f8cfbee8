# Installs the tree that this port lies in:
#   vcpkg install socle --overlay-ports=packaging/vcpkg
# A published port takes the archive of a release instead, by vcpkg_from_git or one of its relatives.
get_filename_component(SOURCE_PATH "${CMAKE_CURRENT_LIST_DIR}/../../.." ABSOLUTE)

vcpkg_cmake_configure(
    SOURCE_PATH "${SOURCE_PATH}"
    OPTIONS -DSOCLE_BUILD_TESTS=OFF -DSOCLE_BUILD_EXAMPLES=OFF
)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(PACKAGE_NAME socle CONFIG_PATH lib/cmake/socle)
vcpkg_fixup_pkgconfig()
file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include")
vcpkg_install_copyright(FILE_LIST "${SOURCE_PATH}/LICENSE")
