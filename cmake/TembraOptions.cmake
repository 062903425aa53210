# Compiler settings that hold for every target.
option(TEMBRA_BUILD_TESTS "Build the tests" ON)
option(TEMBRA_BUILD_BENCHMARKS "Build the benchmarks" OFF)
set(TEMBRA_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize takes them (e.g. address,undefined)")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTORCC ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}")

if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

find_program(TEMBRA_CCACHE ccache)
if(TEMBRA_CCACHE)
    # What it needs to know of precompiled headers.
    set(CMAKE_CXX_COMPILER_LAUNCHER
        "${CMAKE_COMMAND}" -E env CCACHE_SLOPPINESS=pch_defines,time_macros "${TEMBRA_CCACHE}")
    add_compile_options($<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
endif()

# The many test programs are linked in a quarter of the time.
include(CheckLinkerFlag)
check_linker_flag(CXX -fuse-ld=gold TEMBRA_HAS_GOLD)
if(TEMBRA_HAS_GOLD)
    add_link_options(-fuse-ld=gold)
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual)
# GCC 12 sees uninitialised values inside of std::variant and std::optional where there are none.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-Wno-maybe-uninitialized)
endif()
# What a compiler warns of that nobody here has tried must not stop anybody's build.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    add_compile_options(-Werror)
endif()
add_compile_definitions(
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_NO_CAST_FROM_BYTEARRAY
    QT_NO_KEYWORDS QT_NO_FOREACH QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_NO_CONTEXTLESS_CONNECT
    QT_USE_QSTRINGBUILDER QT_DISABLE_DEPRECATED_BEFORE=0x060400)
if(TEMBRA_SANITIZE)
    add_compile_options(-fsanitize=${TEMBRA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all -g1)
    add_link_options(-fsanitize=${TEMBRA_SANITIZE})
endif()
