# What every room shares: language level, warnings, sanitizers, and the two functions that make a room and its tests. Where
# this project is a part of another one's build, the variables below end with this folder.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
if(PROJECT_IS_TOP_LEVEL)
  set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
endif()

# ccache unless the user names a launcher, also an empty one, on the command line or in the environment.
if(PROJECT_IS_TOP_LEVEL AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
  find_program(KELVA_CCACHE ccache)
  if(KELVA_CCACHE)
    # ccache caches nothing that uses a precompiled header unless it is told that times and macros in there do not matter.
    set(CMAKE_CXX_COMPILER_LAUNCHER
      "${CMAKE_COMMAND}" -E env CCACHE_SLOPPINESS=pch_defines,time_macros "${KELVA_CCACHE}")
  endif()
endif()

# Global, because Kelva::kelva names it to programs in other folders.
find_package(Boost 1.74 REQUIRED GLOBAL)
find_package(Threads REQUIRED)
if(KELVA_BUILD_TESTS)
  find_package(GTest REQUIRED)
  if(NOT APPLE)
    # Only the tests need it, so ./run is content without; tests/umockdev says so where it is missing.
    find_package(PkgConfig REQUIRED)
    pkg_check_modules(UMOCKDEV IMPORTED_TARGET umockdev-1.0)
    find_library(UMOCKDEV_PRELOAD umockdev-preload)
  endif()
endif()

if(KELVA_SANITIZER)
  add_compile_options(-fsanitize=${KELVA_SANITIZER} -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${KELVA_SANITIZER})
  if(KELVA_SANITIZER MATCHES "undefined")
    add_compile_options(-fno-sanitize-recover=undefined)
  endif()
endif()

include(KelvaHardening)

# kelva_warnings(TARGET): this project's own sources compile without a warning. A warning is an error where KELVA_WERROR
# is on, as in the presets that developers and CI build: a newer compiler's new warning must not stop an installation.
function(kelva_warnings target)
  if(KELVA_SANITIZER)
    # With a sanitizer's calls in between, g++ takes members of moved-from temporaries for uninitialised.
    target_compile_options(${target} PRIVATE $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-maybe-uninitialized>)
  endif()
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wnon-virtual-dtor $<$<BOOL:${KELVA_WERROR}>:-Werror>
    # g++ 12 sees overlapping copies in the standard library's own operator+ of strings when it optimises.
    $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-restrict>
    # The same with ends of its vectors overrun, at -O3.
    $<$<AND:$<COMPILE_LANG_AND_ID:CXX,GNU>,$<CONFIG:Release>>:-Wno-array-bounds;-Wno-stringop-overflow;-Wno-stringop-overread>)
endfunction()

# In a unity build (CMAKE_UNITY_BUILD) the sources of a target are compiled as one file. Two ways out, for sources that use a
# name of their own for different things: APART names such sources, SEPARATE stands for all of a target.
macro(kelva_unity target prefix)
  if(${prefix}_APART)
    set_source_files_properties(${${prefix}_APART} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  endif()
  if(${prefix}_SEPARATE)
    set_target_properties(${target} PROPERTIES UNITY_BUILD OFF)
  endif()
endmacro()

# kelva_find_library(VARIABLE NAME HEADER): a library of the system, its static archive where KELVA_STATIC asks for one and there
# is one. This folder and those below it find the header; VARIABLE_HEADERS says where it is.
function(kelva_find_library variable name header)
  if(KELVA_STATIC)
    list(APPEND names lib${name}.a)
  endif()
  find_library(${variable} NAMES ${names} ${name} REQUIRED)
  find_path(${variable}_HEADERS ${header} REQUIRED)
  include_directories(SYSTEM "${${variable}_HEADERS}")
endfunction()

# kelva_for_this_processor(): the targets of this folder, and of those below it, link libraries that are installed for one
# processor. Only macOS has programs for several.
macro(kelva_for_this_processor)
  if(CMAKE_OSX_ARCHITECTURES MATCHES ";")
    set(CMAKE_OSX_ARCHITECTURES ${CMAKE_HOST_SYSTEM_PROCESSOR})
    unset(CMAKE_APPLE_ARCH_SYSROOTS)  # one entry for each of the processors above
  endif()
endmacro()

# kelva_static_runtime(TARGET): the few pages of the compiler's libraries that a program uses, not all of them.
function(kelva_static_runtime target)
  if(KELVA_STATIC AND NOT KELVA_SANITIZER)
    target_link_options(${target} PRIVATE -static-libstdc++ -static-libgcc)
  endif()
endfunction()

# kelva_room(TARGET SOURCES file... [APART file... | SEPARATE] [LINKS target...] [PRIVATE_LINKS target...]): one room of the
# house as a static library.
function(kelva_room target)
  cmake_parse_arguments(ROOM "SEPARATE" "" "SOURCES;APART;LINKS;PRIVATE_LINKS" ${ARGN})
  add_library(${target} STATIC ${ROOM_SOURCES})
  kelva_unity(${target} ROOM)
  target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)
  kelva_warnings(${target})
  kelva_harden(${target})
  target_link_libraries(${target} PUBLIC ${ROOM_LINKS} PRIVATE ${ROOM_PRIVATE_LINKS})
endfunction()

# On a Mac `kelva` calls Apple's frameworks, which know the cameras of the machine. kelva-virtual and the tests call darwin/ in
# their place: they have the property KELVA_VIRTUAL. A room that includes the headers of the frameworks is built once for each.

# kelva_framework_room(TARGET <arguments of kelva_room>): such a room.
function(kelva_framework_room target)
  kelva_room(${target} ${ARGN})
  if(APPLE AND kelva_has_registry)
    kelva_room(${target}_virtual ${ARGN})
    set_target_properties(${target}_virtual PROPERTIES KELVA_VIRTUAL ON)
  endif()
endfunction()

# kelva_for_program(VARIABLE TARGET): what others link in the place of such a room; the program that is linked decides.
function(kelva_for_program variable target)
  set(either ${target})
  if(APPLE AND kelva_has_registry)
    set(either "$<IF:$<BOOL:$<TARGET_PROPERTY:KELVA_VIRTUAL>>,${target}_virtual,${target}>")
  endif()
  set(${variable} ${either} PARENT_SCOPE)
endfunction()

# kelva_program(TARGET SOURCES file... [APART file... | SEPARATE] LINKS target...): a program in ${PROJECT_BINARY_DIR}/bin.
function(kelva_program target)
  cmake_parse_arguments(PROGRAM "SEPARATE" "" "SOURCES;APART;LINKS" ${ARGN})
  add_executable(${target} ${PROGRAM_SOURCES})
  kelva_unity(${target} PROGRAM)
  kelva_warnings(${target})
  kelva_harden(${target})
  target_link_libraries(${target} PRIVATE ${PROGRAM_LINKS})
endfunction()

# kelva_manual(PROGRAM COMPONENT): the manual pages and completions of a program, which prints them from its own table. Not
# while cross-compiling: the program has to run.
function(kelva_manual program component)
  if(CMAKE_CROSSCOMPILING OR KELVA_SANITIZER)
    return()
  endif()
  set(pages "${CMAKE_CURRENT_BINARY_DIR}/man")
  set(completions "${CMAKE_CURRENT_BINARY_DIR}/completions")
  add_custom_command(
    OUTPUT "${pages}/${program}.1" "${completions}/${program}" "${completions}/_${program}" "${completions}/${program}.fish"
    COMMAND ${CMAKE_COMMAND} -E make_directory "${completions}"
    COMMAND ${program} manual --into "${pages}"
    COMMAND ${program} completion bash > "${completions}/${program}"
    COMMAND ${program} completion zsh > "${completions}/_${program}"
    COMMAND ${program} completion fish > "${completions}/${program}.fish"
    DEPENDS ${program} VERBATIM)
  add_custom_target(${program}_manual ALL DEPENDS "${pages}/${program}.1")
  install(DIRECTORY "${pages}/" DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT ${component})
  install(FILES "${completions}/${program}" DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
    COMPONENT ${component})
  install(FILES "${completions}/_${program}" DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions COMPONENT ${component})
  install(FILES "${completions}/${program}.fish" DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d
    COMPONENT ${component})
endfunction()

# A test is compiled more often than it is run.
set(kelva_test_options -O0)

# What nearly every test includes, compiled once.
if(KELVA_BUILD_TESTS)
  add_executable(test_headers "${PROJECT_SOURCE_DIR}/cmake/TestHeaders.cpp")
  kelva_warnings(test_headers)
  target_compile_options(test_headers PRIVATE ${kelva_test_options})
  target_link_libraries(test_headers PRIVATE GTest::gmock GTest::gtest)
  set_target_properties(test_headers PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/test-bin")
  target_precompile_headers(test_headers PRIVATE <gmock/gmock.h> <gtest/gtest.h>
    <algorithm> <array> <cstdint> <cstring> <filesystem> <fstream> <functional> <iterator> <map> <memory> <optional> <set>
    <span> <sstream> <stdexcept> <string> <string_view> <thread> <utility> <vector>)
endif()

# kelva_test(NAME SOURCES file... [APART file... | SEPARATE] LINKS target... [LABELS label...] [TIMEOUT seconds]): a GoogleTest
# program that is one entry of ctest. What is labelled long is left out of the sanitizer builds.
function(kelva_test name)
  if(NOT KELVA_BUILD_TESTS)
    return()
  endif()
  cmake_parse_arguments(TEST "SEPARATE" "TIMEOUT" "SOURCES;APART;LINKS;LABELS" ${ARGN})
  if(KELVA_SANITIZER AND "long" IN_LIST TEST_LABELS)
    return()
  endif()
  add_executable(${name} ${TEST_SOURCES})
  kelva_unity(${name} TEST)
  kelva_warnings(${name})
  target_compile_options(${name} PRIVATE ${kelva_test_options})
  target_link_libraries(${name} PRIVATE ${TEST_LINKS} GTest::gmock GTest::gtest_main)
  target_precompile_headers(${name} REUSE_FROM test_headers)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/test-bin")
  set_target_properties(${name} PROPERTIES KELVA_VIRTUAL ON)
  add_test(NAME ${name} COMMAND ${name})
  if(NOT TEST_TIMEOUT)
    set(TEST_TIMEOUT 120)
  endif()
  set_tests_properties(${name} PROPERTIES TIMEOUT ${TEST_TIMEOUT} LABELS "${TEST_LABELS}")
endfunction()
