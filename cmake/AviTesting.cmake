# GoogleTest from the source that Debian's package installs, built with this project's own flags:
# the sanitizer presets and the cross build need it instrumented and for the target's architecture.

set(AVI_GOOGLETEST_SOURCE /usr/src/googletest CACHE PATH "GoogleTest sources (Debian: googletest)")
set(INSTALL_GTEST OFF)
add_subdirectory(${AVI_GOOGLETEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
foreach(target IN ITEMS gtest gtest_main gmock gmock_main)
    target_compile_options(${target} PRIVATE -w -Og)  # another project's code, not ours to mend
endforeach()
include(GoogleTest)

# Death tests start a program anew where they can: a fork of a program with threads may hang.
if(CMAKE_CROSSCOMPILING_EMULATOR)
    set(AVI_DEATH_TEST_STYLE fast)
else()
    set(AVI_DEATH_TEST_STYLE threadsafe)
endif()

# What every test program includes is compiled once for all of them, as part of a program of its own
# that nobody runs: whoever reuses it has to be built with the same flags.
add_executable(avi_test_header ${CMAKE_CURRENT_LIST_DIR}/PrecompiledTestHeader.cpp)
target_link_libraries(avi_test_header PRIVATE gmock gtest_main)
target_compile_options(avi_test_header PRIVATE -Og)
target_precompile_headers(avi_test_header PRIVATE
    <gmock/gmock.h> <gtest/gtest.h> <cstdint> <functional> <memory> <optional> <string> <vector>)

# avi_build_quickly(TARGET): what is tested is optimised, the tests themselves need to be built
# quickly. Many of their files are one compilation: names of file scope are unique in a folder.
function(avi_build_quickly target)
    target_compile_options(${target} PRIVATE -Og)
    target_precompile_headers(${target} REUSE_FROM avi_test_header)
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 24)
endfunction()

# avi_add_test_library(NAME SOURCES... [LIBS...]): what several test programs share.
function(avi_add_test_library name)
    cmake_parse_arguments(arg "" "" "SOURCES;LIBS" ${ARGN})
    add_library(${name} STATIC ${arg_SOURCES})
    target_link_libraries(${name} PUBLIC ${arg_LIBS} gmock gtest)
    target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR})
    # As programs are compiled: the precompiled header is that of one.
    set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE OFF)
    target_compile_options(${name} PRIVATE -fPIE)
    avi_build_quickly(${name})
endfunction()

# Starting a program costs more than most cases where it is instrumented or emulated.
if(AVI_SANITIZE OR CMAKE_CROSSCOMPILING)
    set(AVI_TEST_ENTRY_PROGRAM ON)
endif()

# avi_add_test(NAME SOURCES... [LIBS...] [SPAWNS]): one test program. Each of its cases is an entry of
# ctest, found when the suite runs; under sanitizers and in cross builds the whole program is one.
# SPAWNS: it executes other programs of this build. A test leaves GoogleTest's death_test_style as it
# finds it.
function(avi_add_test name)
    cmake_parse_arguments(arg "SPAWNS" "" "SOURCES;LIBS" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE ${arg_LIBS} gmock gtest_main)
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR})
    avi_build_quickly(${name})
    if(arg_SPAWNS AND AVI_SPAWNING_EMULATOR)
        set_target_properties(${name} PROPERTIES
            CROSSCOMPILING_EMULATOR "${AVI_SPAWNING_EMULATOR}")
    endif()
    if(AVI_TEST_ENTRY_PROGRAM)
        add_test(NAME ${name} COMMAND ${name})
        set_tests_properties(${name} PROPERTIES
            TIMEOUT 1800 ENVIRONMENT GTEST_DEATH_TEST_STYLE=${AVI_DEATH_TEST_STYLE})
    else()
        gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                             PROPERTIES TIMEOUT 120
                             ENVIRONMENT GTEST_DEATH_TEST_STYLE=${AVI_DEATH_TEST_STYLE})
    endif()
endfunction()
