# Libraries that are called, not written here. scripts/install-dependencies brings them to the machine.

# orvex_fetch(LIBRARY): sets LIBRARY_source to the folder of its sources, from Debian's source package.
function(orvex_fetch library)
    get_filename_component(builds ${CMAKE_BINARY_DIR} DIRECTORY)
    set(source ${builds}/third_party/${library})
    execute_process(COMMAND ${CMAKE_SOURCE_DIR}/scripts/fetch-source ${library} ${source} COMMAND_ERROR_IS_FATAL ANY)
    set(${library}_source ${source} PARENT_SCOPE)
endfunction()

# LodePNG, the whole of it, for tools and tests. The driver compiles its own encoder from the same source:
# driver/render/png_encoder.
orvex_fetch(lodepng)
set_source_files_properties(${lodepng_source}/lodepng.c PROPERTIES LANGUAGE CXX)
add_library(lodepng STATIC ${lodepng_source}/lodepng.c)
target_include_directories(lodepng SYSTEM PUBLIC ${lodepng_source})
target_compile_options(lodepng PRIVATE -w)

# zlib, of which Debian packages a Windows build, too, but none to cross-build against for another processor.
if(CMAKE_CROSSCOMPILING AND NOT WIN32)
    orvex_fetch(zlib)
    file(GLOB sources ${zlib_source}/*.c)
    add_library(zlib STATIC ${sources})
    target_include_directories(zlib SYSTEM PUBLIC ${zlib_source})
    target_compile_options(zlib PRIVATE -w)
    add_library(ZLIB::ZLIB ALIAS zlib)
else()
    set(ZLIB_USE_STATIC_LIBS ON)
    find_package(ZLIB REQUIRED)
endif()

# libspng, which reads and writes PNG files row by row, with zlib. Pages are decoded in every build, so it is always
# optimized.
orvex_fetch(spng)
add_library(spng STATIC ${spng_source}/spng.c)
target_include_directories(spng SYSTEM PUBLIC ${spng_source})
target_compile_definitions(spng PRIVATE SPNG_STATIC)
target_compile_options(spng PRIVATE -w -O3)
target_link_libraries(spng PUBLIC ZLIB::ZLIB)

# Header-only libraries, offered through a folder of their own: the whole of the system's include folder would break
# a cross build.
add_library(orvex_headers INTERFACE)
foreach(library CLI nlohmann simde stb)
    file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/headers)
    file(CREATE_LINK /usr/include/${library} ${CMAKE_BINARY_DIR}/headers/${library} SYMBOLIC)
endforeach()
target_include_directories(orvex_headers SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/headers)

# GoogleTest from Debian's source package, so that it is compiled with this build's own flags.
set(INSTALL_GTEST OFF)
set(gtest_force_shared_crt ON)
add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
foreach(library gtest gtest_main gmock gmock_main)
    target_compile_options(${library} PRIVATE -w ${ORVEX_UNOPTIMIZED})
    get_target_property(includes ${library} INTERFACE_INCLUDE_DIRECTORIES)
    set_target_properties(${library} PROPERTIES INTERFACE_SYSTEM_INCLUDE_DIRECTORIES "${includes}")
endforeach()
