# Debian packages, made by cpack in a build that is configured with the preset `package`: one of the library, one to
# build against it, one of the documents.
set(SOCLE_PACKAGE_CONTACT "The socle authors <maintainers@socle.example.org>" CACHE STRING "Who answers for the packages")

set(soname_version "${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}")
set(package_runtime "libsocle${soname_version}")
set(package_development libsocle-dev)
set(package_documentation libsocle-doc)

# What Debian asks of every package: its licence, and what changed in it.
string(TIMESTAMP package_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
find_program(GZIP gzip)
foreach(component IN ITEMS runtime development documentation)
    set(name ${package_${component}})
    set(folder "${PROJECT_BINARY_DIR}/packages/${name}")
    file(READ LICENSE package_licence)
    string(REGEX REPLACE "^[^\n]*\n\n([^\n]*)\n\n" "" package_licence "${package_licence}")
    set(package_copyright "${CMAKE_MATCH_1}")
    string(REGEX REPLACE "\n\n" "\n.\n" package_licence "${package_licence}")
    string(REGEX REPLACE "\n([^\n])" "\n \\1" package_licence "\n${package_licence}")
    string(REGEX REPLACE "^Copyright \\(c\\) " "" package_copyright "${package_copyright}")
    configure_file(cmake/debian_copyright.in "${folder}/copyright" @ONLY)
    configure_file(cmake/debian_changelog.in "${folder}/changelog" @ONLY)
    install(FILES "${folder}/copyright" DESTINATION "share/doc/${name}" COMPONENT ${component} EXCLUDE_FROM_ALL)
    if(GZIP)
        execute_process(COMMAND "${GZIP}" -9nf "${folder}/changelog" COMMAND_ERROR_IS_FATAL ANY)
        install(FILES "${folder}/changelog.gz" DESTINATION "share/doc/${name}" COMPONENT ${component} EXCLUDE_FROM_ALL)
    endif()
endforeach()

install(
    DIRECTORY examples
    DESTINATION share/doc/libsocle-dev
    COMPONENT development
    EXCLUDE_FROM_ALL
)
install(
    FILES README.md CONTRIBUTING.md
    DESTINATION share/doc/libsocle-doc
    COMPONENT documentation
    EXCLUDE_FROM_ALL
)
install(
    DIRECTORY docs
    DESTINATION share/doc/libsocle-doc
    COMPONENT documentation
    EXCLUDE_FROM_ALL
    OPTIONAL
    FILES_MATCHING PATTERN "*.md" PATTERN "*.svg"
)
# Where the reference has been built.
install(
    DIRECTORY "${PROJECT_BINARY_DIR}/docs/html"
    DESTINATION share/doc/libsocle-doc
    COMPONENT documentation
    EXCLUDE_FROM_ALL
    OPTIONAL
)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "${SOCLE_PACKAGE_CONTACT}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "composable byte streams, 16-bit text, files with forks")
set(CPACK_COMPONENTS_ALL runtime development documentation)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE
)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(description "A base library for programs that are made of plug-ins: byte streams that are put
together from small parts, numbers in a stated byte order, 16-bit text and
paths, files with forks, and the command line.")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "${description}\n\nThis package holds the shared library.")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "${description}\n\nThis package holds headers, CMake and pkg-config files, and examples.")
set(CPACK_COMPONENT_DOCUMENTATION_DESCRIPTION "${description}\n\nThis package holds the documents.")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${package_runtime})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
# What packages that link with it depend on, and the look for new libraries that ends an installation.
set(runtime_control "${PROJECT_BINARY_DIR}/packages/control")
file(WRITE "${runtime_control}/shlibs" "libsocle ${soname_version} ${package_runtime} (>= ${PROJECT_VERSION})\n")
file(WRITE "${runtime_control}/triggers" "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${runtime_control}/shlibs" "${runtime_control}/triggers")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME ${package_development})
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${package_runtime} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS ${package_documentation})
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_NAME ${package_documentation})
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)
include(CPack)
