# Two components: what programs need to run, and what it takes to build them.
include(CMakePackageConfigHelpers)

set(socle_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/socle")

install(
    TARGETS socle
    EXPORT socle
    RUNTIME COMPONENT runtime
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
    ARCHIVE COMPONENT development
    FILE_SET HEADERS
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
    COMPONENT development
)
install(
    EXPORT socle
    NAMESPACE socle::
    FILE socleConfig.cmake
    DESTINATION "${socle_package_dir}"
    COMPONENT development
)

write_basic_package_version_file(
    "${PROJECT_BINARY_DIR}/socleConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion
)
install(
    FILES "${PROJECT_BINARY_DIR}/socleConfigVersion.cmake"
    DESTINATION "${socle_package_dir}"
    COMPONENT development
)

# Relative to where the file lies, so that an installed tree can be moved.
file(RELATIVE_PATH socle_pc_prefix "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
configure_file(cmake/socle.pc.in "${PROJECT_BINARY_DIR}/socle.pc" @ONLY)
install(
    FILES "${PROJECT_BINARY_DIR}/socle.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
    COMPONENT development
)

if(PROJECT_IS_TOP_LEVEL)
    if(WIN32)
        include(cmake/SocleZip.cmake)
    else()
        include(cmake/SoclePackages.cmake)
    endif()
endif()
