# What programs for Windows need beside them: a program looks for libraries in its own folder.
if(PROJECT_IS_TOP_LEVEL)
    set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
endif()

# The compiler's own libraries. They are shared, as exceptions pass from one library to another.
set(socle_runtime_libraries)
if(MINGW)
    foreach(name IN ITEMS libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
        execute_process(
            COMMAND "${CMAKE_CXX_COMPILER}" "-print-file-name=${name}"
            OUTPUT_VARIABLE library
            OUTPUT_STRIP_TRAILING_WHITESPACE
            COMMAND_ERROR_IS_FATAL ANY
        )
        if(NOT IS_ABSOLUTE "${library}")
            find_file(library "${name}" PATH_SUFFIXES lib bin REQUIRED)
        endif()
        list(APPEND socle_runtime_libraries "${library}")
    endforeach()
    if(PROJECT_IS_TOP_LEVEL)
        file(COPY ${socle_runtime_libraries} DESTINATION "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
    endif()
endif()
