# What every room shares: language level, warnings, sanitizers, and the two functions that make a room and its tests.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

# ccache unless the user names a launcher, also an empty one, on the command line or in the environment.
if(NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
  find_program(KELVA_CCACHE ccache)
  if(KELVA_CCACHE)
    # ccache caches nothing that uses a precompiled header unless it is told that times and macros in there do not matter.
    set(CMAKE_CXX_COMPILER_LAUNCHER
      "${CMAKE_COMMAND}" -E env CCACHE_SLOPPINESS=pch_defines,time_macros "${KELVA_CCACHE}")
  endif()
endif()

find_package(Boost 1.74 REQUIRED)
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

# kelva_warnings(TARGET): this project's own sources compile without a warning. A warning is an error where KELVA_WERROR
# is on, as in the presets that developers and CI build: a newer compiler's new warning must not stop an installation.
function(kelva_warnings target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wnon-virtual-dtor $<$<BOOL:${KELVA_WERROR}>:-Werror>
    # g++ 12 sees overlapping copies in the standard library's own operator+ of strings when it optimises.
    $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-restrict>
    # The same with ends of its vectors overrun, at -O3.
    $<$<AND:$<COMPILE_LANG_AND_ID:CXX,GNU>,$<CONFIG:Release>>:-Wno-array-bounds;-Wno-stringop-overflow;-Wno-stringop-overread>)
endfunction()

# kelva_room(TARGET SOURCES file... [LINKS target...] [PRIVATE_LINKS target...]): one room of the house as a static library.
function(kelva_room target)
  cmake_parse_arguments(ROOM "" "" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
  add_library(${target} STATIC ${ROOM_SOURCES})
  target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)
  kelva_warnings(${target})
  target_link_libraries(${target} PUBLIC ${ROOM_LINKS} PRIVATE ${ROOM_PRIVATE_LINKS})
endfunction()

# kelva_program(TARGET SOURCES file... LINKS target...): a program in ${CMAKE_BINARY_DIR}/bin.
function(kelva_program target)
  cmake_parse_arguments(PROGRAM "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${target} ${PROGRAM_SOURCES})
  kelva_warnings(${target})
  target_link_libraries(${target} PRIVATE ${PROGRAM_LINKS})
endfunction()

# kelva_manual(PROGRAM): the manual pages of a program, which prints them from its own table. Not while cross-compiling: the
# program has to run.
function(kelva_manual program)
  if(CMAKE_CROSSCOMPILING OR KELVA_SANITIZER)
    return()
  endif()
  set(pages "${CMAKE_CURRENT_BINARY_DIR}/man")
  add_custom_command(OUTPUT "${pages}/${program}.1" COMMAND ${program} manual --into "${pages}" DEPENDS ${program} VERBATIM)
  add_custom_target(${program}_manual ALL DEPENDS "${pages}/${program}.1")
  install(DIRECTORY "${pages}/" DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endfunction()

# kelva_completions(PROGRAM): the same for its completions.
function(kelva_completions program)
  if(CMAKE_CROSSCOMPILING OR KELVA_SANITIZER)
    return()
  endif()
  set(completions "${CMAKE_CURRENT_BINARY_DIR}/completions")
  add_custom_command(
    OUTPUT "${completions}/${program}" "${completions}/_${program}" "${completions}/${program}.fish"
    COMMAND ${CMAKE_COMMAND} -E make_directory "${completions}"
    COMMAND ${program} completion bash > "${completions}/${program}"
    COMMAND ${program} completion zsh > "${completions}/_${program}"
    COMMAND ${program} completion fish > "${completions}/${program}.fish"
    DEPENDS ${program} VERBATIM)
  add_custom_target(${program}_completions ALL DEPENDS "${completions}/${program}")
  install(FILES "${completions}/${program}" DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  install(FILES "${completions}/_${program}" DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
  install(FILES "${completions}/${program}.fish" DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endfunction()

# kelva_test(NAME SOURCES file... LINKS target... [LABELS label...] [TIMEOUT seconds]): a GoogleTest program that is
# one entry of ctest. What is labelled long is left out of the sanitizer builds.
function(kelva_test name)
  if(NOT KELVA_BUILD_TESTS)
    return()
  endif()
  cmake_parse_arguments(TEST "" "TIMEOUT" "SOURCES;LINKS;LABELS" ${ARGN})
  if(KELVA_SANITIZER AND "long" IN_LIST TEST_LABELS)
    return()
  endif()
  add_executable(${name} ${TEST_SOURCES})
  kelva_warnings(${name})
  target_link_libraries(${name} PRIVATE ${TEST_LINKS} GTest::gmock GTest::gtest_main)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/test-bin")
  add_test(NAME ${name} COMMAND ${name})
  if(NOT TEST_TIMEOUT)
    set(TEST_TIMEOUT 120)
  endif()
  set_tests_properties(${name} PROPERTIES TIMEOUT ${TEST_TIMEOUT} LABELS "${TEST_LABELS}")
endfunction()
