# SPDX-License-Identifier: MIT
# The folders of the rooms in veltra/rooms.txt, in its order, as far as they exist. It is an error
# when a room stands above one that it knows, or knows one that is not there.
function(veltra_read_rooms result)
    set(table "${PROJECT_SOURCE_DIR}/veltra/rooms.txt")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${table}")
    file(STRINGS "${table}" lines REGEX "^[A-Za-z]")
    set(rooms "")
    set(folders "")
    foreach(line IN LISTS lines)
        string(REGEX MATCH "^[^: ]+" room "${line}")
        string(REGEX REPLACE "^[^:]+: *" "" known "${line}")
        separate_arguments(known)
        foreach(other IN LISTS known)
            if(NOT other IN_LIST rooms)
                message(FATAL_ERROR "${table}: ${room} knows ${other}, which does not stand above it")
            endif()
        endforeach()
        list(APPEND rooms ${room})
        file(GLOB found LIST_DIRECTORIES FALSE RELATIVE "${PROJECT_SOURCE_DIR}/veltra" CONFIGURE_DEPENDS
            "${PROJECT_SOURCE_DIR}/veltra/${room}/CMakeLists.txt")
        list(TRANSFORM found REPLACE "/CMakeLists.txt$" "")
        list(APPEND folders ${found})
    endforeach()
    set(${result} ${folders} PARENT_SCOPE)
endfunction()

# In builds that no host gets, the standard headers that most sources include are compiled once.
# Elsewhere each source stands by its own includes.
function(veltra_share_headers target)
    if(NOT VELTRA_SANITIZE AND NOT VELTRA_FUZZ AND NOT CMAKE_CROSSCOMPILING)
        return()
    endif()
    if(NOT TARGET veltra_shared_headers)
        file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/shared_headers.cpp" CONTENT "")
        add_library(veltra_shared_headers OBJECT EXCLUDE_FROM_ALL "${PROJECT_BINARY_DIR}/shared_headers.cpp")
        target_link_libraries(veltra_shared_headers PRIVATE veltra_flags Threads::Threads)
        target_precompile_headers(veltra_shared_headers PRIVATE
            <algorithm> <array> <atomic> <bit> <cerrno> <cmath> <cstddef> <cstdint> <cstdio>
            <cstdlib> <cstring> <functional> <iterator> <limits> <map> <memory> <mutex> <optional>
            <span> <string> <string_view> <utility> <vector>)
    endif()
    target_precompile_headers(${target} REUSE_FROM veltra_shared_headers)
endfunction()

# A room is one folder of veltra/ and one target: its sources become part of the library, its tests
# one program.
#
#   veltra_room(audio
#       UNITS musical_context           # x.h and x.cpp, and x_test.cpp where there is one
#       HEADERS only_a_header.h         # installed, without a source
#       PRIVATE detail/helper.cpp       # sources whose headers are not installed
#       TESTS detail/helper_test.cpp
#       LONG_TESTS)                     # they calculate for long, and are optimised
#
# Tests link the rooms themselves, not the library: they may look inside.
function(veltra_room name)
    cmake_parse_arguments(ROOM "LONG_TESTS" "" "UNITS;HEADERS;PRIVATE;TESTS;LIBRARIES" ${ARGN})
    string(REPLACE "/" "_" target "veltra_${name}")
    set(sources ${ROOM_PRIVATE})
    set(headers ${ROOM_HEADERS})
    set(tests ${ROOM_TESTS})
    foreach(unit IN LISTS ROOM_UNITS)
        list(APPEND sources ${unit}.cpp)
        list(APPEND headers ${unit}.h)
        if(EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/${unit}_test.cpp")
            list(APPEND tests ${unit}_test.cpp)
        endif()
    endforeach()

    add_library(${target} OBJECT ${sources})
    target_link_libraries(${target} PRIVATE veltra_flags Threads::Threads ${ROOM_LIBRARIES})
    veltra_share_headers(${target})
    set_property(GLOBAL APPEND PROPERTY VELTRA_ROOMS ${target})
    list(TRANSFORM headers PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/")
    set_property(GLOBAL APPEND PROPERTY VELTRA_PUBLIC_HEADERS ${headers})

    if(VELTRA_TESTS AND tests)
        set(long "")
        if(ROOM_LONG_TESTS)
            set(long LONG)
        endif()
        veltra_test(${target}_test ${long} SOURCES ${tests})
    endif()
endfunction()

function(veltra_compile_as_test target)
    set_target_properties(${target} PROPERTIES VELTRA_IS_TEST ON)
    # Qt asks for the first, tests of stack traces for the second: a precompiled header serves only
    # who has the same.
    target_compile_options(${target} PRIVATE -fPIC $<$<CONFIG:Release>:-g1>)
    target_link_libraries(${target} PRIVATE veltra_flags GTest::gmock GTest::gtest_main)
endfunction()

# Most tests are compiled more often than run: what each includes first is compiled once for all of
# them, and they are not optimised, but where they are emulated.
function(veltra_compile_quickly target)
    set(level -O0)
    if(CMAKE_CROSSCOMPILING)
        set(level "")
    endif()
    if(NOT TARGET veltra_test_prelude)
        file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/test_prelude.cpp" CONTENT "int main() {}\n")
        add_executable(veltra_test_prelude EXCLUDE_FROM_ALL "${PROJECT_BINARY_DIR}/test_prelude.cpp")
        veltra_compile_as_test(veltra_test_prelude)
        target_compile_options(veltra_test_prelude PRIVATE ${level})
        target_precompile_headers(veltra_test_prelude
            PRIVATE "${PROJECT_SOURCE_DIR}/veltra/base/testing/prelude.h")
    endif()
    target_compile_options(${target} PRIVATE ${level})
    target_precompile_headers(${target} REUSE_FROM veltra_test_prelude)
endfunction()

# One test program, its cases known to ctest one by one. HOST: it stands outside the library like a
# host, and links only the LIBRARIES that it names. LONG: it calculates for long. ENVIRONMENT: one
# variable for its runs by ctest. FILTER: which of its cases ctest knows, as GoogleTest has it.
function(veltra_test target)
    cmake_parse_arguments(TEST "HOST;LONG" "ENVIRONMENT;FILTER" "SOURCES;LIBRARIES" ${ARGN})
    set(inside $<$<NOT:$<BOOL:${TEST_HOST}>>:veltra_inside>)
    add_executable(${target} ${TEST_SOURCES})
    target_link_libraries(${target} PRIVATE ${inside} ${TEST_LIBRARIES})
    veltra_compile_as_test(${target})
    if(NOT TEST_HOST AND NOT TEST_LONG)  # hosts have flags of their own
        veltra_compile_quickly(${target})
    endif()
    include(GoogleTest)
    set(properties TIMEOUT 900)
    if(TEST_ENVIRONMENT)
        list(APPEND properties ENVIRONMENT "${TEST_ENVIRONMENT}")
    endif()
    set(filter "")
    if(TEST_FILTER)
        set(filter TEST_FILTER "${TEST_FILTER}")
    endif()
    gtest_discover_tests(${target} ${filter} DISCOVERY_TIMEOUT 60 PROPERTIES ${properties})
endfunction()
