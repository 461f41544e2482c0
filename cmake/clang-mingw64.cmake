# The cross build for Windows with Debian's Clang and LLD, on mingw-w64's headers, runtime and C++ library.
include(${CMAKE_CURRENT_LIST_DIR}/mingw64.cmake)

# Clang looks for GCC's libraries in a folder whose name is a version, and Debian's has the thread model in it, too.
file(GLOB gcc /usr/lib/gcc/x86_64-w64-mingw32/*-posix)
cmake_path(GET gcc FILENAME version)
string(REPLACE "-posix" "" version ${version})
set(CMAKE_SYSROOT ${CMAKE_BINARY_DIR}/sysroot)
file(MAKE_DIRECTORY ${CMAKE_SYSROOT}/lib/gcc/x86_64-w64-mingw32)
file(CREATE_LINK ${gcc} ${CMAKE_SYSROOT}/lib/gcc/x86_64-w64-mingw32/${version} SYMBOLIC)
file(CREATE_LINK /usr/x86_64-w64-mingw32 ${CMAKE_SYSROOT}/x86_64-w64-mingw32 SYMBOLIC)
# zlib's header is in the folder of the C library's, which must stay the last that is searched: Clang leaves it there when it
# is named as one of a project's own.
set(CMAKE_NO_SYSTEM_FROM_IMPORTED ON)

foreach(language C CXX)
    set(CMAKE_${language}_COMPILER_TARGET x86_64-w64-mingw32)
endforeach()
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
# From libstdc++'s header Clang compiles the comparison of type_info, which is in the library, too. Other functions that are
# defined twice fail the build by GCC.
foreach(kind EXE SHARED)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT "-fuse-ld=lld -pthread -Wl,--allow-multiple-definition")
endforeach()
