# socle_sources(HEADERS <public header>... SOURCES <source>...)
#
# Called by a family's CMakeLists.txt: adds its sources to the library and its public headers to what is installed.
# Internal headers are not listed.
function(socle_sources)
    cmake_parse_arguments(PARSE_ARGV 0 family "" "" "HEADERS;SOURCES")
    list(TRANSFORM family_HEADERS PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/")
    list(TRANSFORM family_SOURCES PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/")
    if(family_HEADERS)
        target_sources(socle PUBLIC FILE_SET HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}" FILES ${family_HEADERS})
    endif()
    if(family_SOURCES)
        target_sources(socle_objects PRIVATE ${family_SOURCES})
    endif()
endfunction()
