# The version of everything that the Windows build makes, and the resource by which Windows knows it.

# The spooler tells by its file version which of two printer driver files is newer, and has its own order of the four
# numbers: 0; 3 for a driver that runs in user mode; the major and the minor version in one; the patch.
math(EXPR features "256 * ${PROJECT_VERSION_MAJOR} + ${PROJECT_VERSION_MINOR}")
set(ORVEX_FILE_VERSION 0.3.${features}.${PROJECT_VERSION_PATCH})

# orvex_version(TARGET TYPE DESCRIPTION): gives a program or library its version resource. TYPE is VFT_APP, VFT_DLL or
# VFT_DRV, a printer driver.
function(orvex_version target type description)
    if(NOT WIN32)
        return()
    endif()
    set(file ${target}.dll)
    if(type STREQUAL VFT_APP)
        set(file ${target}.exe)
    endif()
    set(subtype VFT2_UNKNOWN)
    if(type STREQUAL VFT_DRV)
        set(subtype 0xC)  # VFT2_DRV_VERSIONED_PRINTER, which mingw-w64's header lacks
    endif()
    string(REPLACE "." "," numbers ${ORVEX_FILE_VERSION})
    configure_file(${CMAKE_SOURCE_DIR}/cmake/version.rc.in ${CMAKE_BINARY_DIR}/version/${target}.rc @ONLY)
    target_sources(${target} PRIVATE ${CMAKE_BINARY_DIR}/version/${target}.rc)
endfunction()
