# How every target of the project is compiled, in both builds.

add_compile_options(-Wall -Wextra -Wshadow -Werror -ffp-contract=off)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-Wno-restrict)  # GCC 12 warns of std::string's own operator+
endif()

if(WIN32)
    # The same sources make the same files, whenever and in whichever folder they are built.
    add_link_options(-static -Wl,--no-insert-timestamp)
    add_compile_options(-ffile-prefix-map=${CMAKE_SOURCE_DIR}=.)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # Where GCC sees a template's function it notes which registers the function changes, and keeps values in the
        # others across a call. In this object format the linker then keeps one copy of the function, perhaps another
        # source's that changes other registers: a label of 4 inches was 0.4 mm long because its unit was lost.
        add_compile_options(-fno-ipa-ra)
        # lld links a test program in a fifth of a second, GNU ld in up to ten. GCC's linker can't be chosen, so clang calls
        # lld, with GCC's libraries. The DLLs are linked by GCC.
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-libgcc-file-name
                        OUTPUT_VARIABLE libgcc COMMAND_ERROR_IS_FATAL ANY)
        get_filename_component(libraries ${libgcc} DIRECTORY)
        set(CMAKE_CXX_LINK_EXECUTABLE
            "clang++ --target=x86_64-w64-mingw32 -fuse-ld=lld -L${libraries} <LINK_FLAGS> <OBJECTS> -o <TARGET> \
<LINK_LIBRARIES> -lpthread")
        # GNU ar has written the list of symbols already, for which it takes a second a source with CLI11 or JSON.
        set(CMAKE_CXX_ARCHIVE_FINISH "")
    endif()
else()
    # UTF-16 text in both builds: every C++ source of the native build, GoogleTest included, agrees on a 2-byte wchar_t.
    add_compile_options(-fshort-wchar)
    if(ORVEX_SANITIZE)
        # The driver has no run-time type information, by which the check of indirect calls tells functions apart.
        add_compile_options(-fsanitize=${ORVEX_SANITIZE} -fno-sanitize=function -fno-sanitize-recover=all
                            -fno-omit-frame-pointer)
        add_link_options(-fsanitize=${ORVEX_SANITIZE})
    endif()
endif()

# orvex_small_frames(TARGET): fails the build when a function of the target takes more than 16 KiB of stack at once.
# Processes with small stacks load printer drivers. The frames of the product count, and those of optimized native code
# are much the same; sanitizers surround every variable with memory of their own, and unoptimized code gives every
# temporary a place of its own.
function(orvex_small_frames target)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT ORVEX_SANITIZE AND NOT ORVEX_COVERAGE)
        target_compile_options(${target} PRIVATE -Werror=frame-larger-than=16384)
    endif()
endfunction()

# orvex_driver_library(TARGET SOURCE...): sources of the driver, which neither throws nor catches, as a library.
function(orvex_driver_library target)
    add_library(${target} STATIC ${ARGN})
    target_include_directories(${target} PUBLIC ${CMAKE_SOURCE_DIR})
    target_compile_options(${target} PRIVATE -fno-exceptions -fno-rtti)
    if(WIN32)
        target_compile_options(${target} PRIVATE -g $<$<CXX_COMPILER_ID:Clang>:-gcodeview>)  # see orvex_symbols
    endif()
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        target_compile_options(${target} PRIVATE -Wpedantic -Wgnu)  # Microsoft's compiler has no extensions of GNU
    endif()
    # The kernels are written with the names of SSE2. SIMDe gives these names to other processors.
    target_link_libraries(${target} PRIVATE orvex_headers)
    target_compile_definitions(${target} PRIVATE SIMDE_ENABLE_NATIVE_ALIASES)
    orvex_small_frames(${target})
    if(ORVEX_COVERAGE)
        # Unoptimized, so that every line of the source is one of the program's.
        target_compile_options(${target} PRIVATE -O0 --coverage)
        target_link_options(${target} INTERFACE --coverage)
    endif()
endfunction()

# orvex_symbols(TARGET): puts the debugging symbols of a library of the Windows build beside it: GCC's into NAME.debug, Clang's
# into NAME.pdb. The library does not name the file: it would with a checksum, and so with the paths of the sources.
function(orvex_symbols target)
    set(symbols ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${target})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        target_link_options(${target} PRIVATE -Wl,--pdb=${symbols}.pdb)
    else()
        # objcopy writes the time into the library, unless it is told another.
        set(objcopy ${CMAKE_COMMAND} -E env SOURCE_DATE_EPOCH=0 ${CMAKE_OBJCOPY})
        add_custom_command(TARGET ${target} POST_BUILD
            COMMAND ${objcopy} --only-keep-debug $<TARGET_FILE:${target}> ${symbols}.debug
            COMMAND ${objcopy} --strip-all $<TARGET_FILE:${target}>
            BYPRODUCTS ${symbols}.debug)
    endif()
endfunction()

# orvex_room(NAME LIBRARY...): one room of the driver, all its sources, as the library orvex_NAME.
function(orvex_room name)
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cpp)
    orvex_driver_library(orvex_${name} ${sources})
    target_link_libraries(orvex_${name} PUBLIC ${ARGN})
endfunction()

# Code that needs no speed is not optimized, and the sanitizers leave it alone, except for AddressSanitizer, whose checks of
# containers all sources share. It is most of what is compiled: the tests, and sources with the templates of CLI11 and of
# nlohmann JSON, which take the optimizer longer than anything else.
set(ORVEX_UNOPTIMIZED -O0)
if(ORVEX_SANITIZE)
    list(APPEND ORVEX_UNOPTIMIZED -fno-sanitize=undefined,fuzzer-no-link)
endif()

# orvex_leave_unoptimized(SOURCE...): those of the sources that parse command lines or JSON.
function(orvex_leave_unoptimized)
    foreach(source IN LISTS ARGN)
        file(STRINGS ${source} found LIMIT_COUNT 1
             REGEX "include .(CLI/CLI|nlohmann/json|tools/common/help_format)\\.h")
        if(found)
            set_source_files_properties(${source} PROPERTIES
                COMPILE_OPTIONS "${ORVEX_UNOPTIMIZED}" SKIP_PRECOMPILE_HEADERS ON)
        endif()
    endforeach()
endfunction()

# Most tests call the system more than they calculate, and under Wine do so beside its server. These would only be in its
# way; those of endurance, besides, write logs from several processes at the same time.
set(ORVEX_CALCULATING_TESTS color profiles render orvexview orvexprofile endurance)

# orvex_test(FOLDER LIBRARY...): tests/FOLDER/*.cpp as the GoogleTest program NAME_tests, named after the last part of the
# folder and run by ctest in both builds.
function(orvex_test folder)
    get_filename_component(room ${folder} NAME)
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/${folder}/*.cpp)
    add_executable(${room}_tests ${sources})
    target_link_libraries(${room}_tests PRIVATE ${ARGN} orvex_testing)
    target_compile_options(${room}_tests PRIVATE ${ORVEX_UNOPTIMIZED})
    target_precompile_headers(${room}_tests REUSE_FROM orvex_testing)
    add_dependencies(${room}_tests hpcrlib)
    if(WIN32 AND orvex_host IN_LIST ARGN)
        add_dependencies(${room}_tests orvexgdi)
    endif()
    add_test(NAME ${room}_tests COMMAND ${room}_tests)
    if(WIN32 AND orvex_host IN_LIST ARGN)
        # The driver's log is one for the machine there; natively it is one for each process.
        set_tests_properties(${room}_tests PROPERTIES RESOURCE_LOCK driver_log)
    endif()
    if(NOT room IN_LIST ORVEX_CALCULATING_TESTS)
        set_tests_properties(${room}_tests PROPERTIES ENVIRONMENT ORVEX_BESIDE_WINESERVER=1)
    endif()
endfunction()
