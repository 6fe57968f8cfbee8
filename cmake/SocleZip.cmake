# A zip archive for Windows, made by cpack in a build that is configured with the preset `windows-package`: what it takes
# to build against the library, to run with it, and the examples.
install(FILES ${socle_runtime_libraries} DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT runtime)
install(FILES LICENSE README.md CHANGELOG.md DESTINATION share/doc/socle COMPONENT runtime)
install(DIRECTORY examples DESTINATION share/doc/socle COMPONENT development)
# The terms of the compiler's libraries, where the distribution has put them.
foreach(package IN ITEMS gcc-mingw-w64-base mingw-w64-common)
    install(
        FILES "/usr/share/doc/${package}/copyright"
        DESTINATION share/doc/socle
        COMPONENT runtime
        RENAME "LICENSE.${package}"
        OPTIONAL
    )
endforeach()

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_FILE_NAME "socle-${PROJECT_VERSION}-windows-x86_64")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "composable byte streams, 16-bit text, files with forks")
set(CPACK_STRIP_FILES ON)
include(CPack)
