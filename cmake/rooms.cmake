# Every room of src/ is a library of its own, so that the build refuses an include against the layers.

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

# Most of the time of a compile goes into headers, so that a module as one unit takes a small part of the time
# of its files one by one. Builds for daily work compile the files, and so find a missing include.
if(KEPLO_UNITY)
  set(CMAKE_UNITY_BUILD ON)
  set(CMAKE_UNITY_BUILD_BATCH_SIZE 0)
endif()

add_library(keplo_options INTERFACE)
target_compile_options(keplo_options INTERFACE -Wall -Wextra -Wpedantic -Werror)
# g++ 12 reports overlaps inside std::string's operator+ that cannot happen.
target_compile_options(keplo_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
target_include_directories(keplo_options INTERFACE ${CMAKE_SOURCE_DIR}/src)
if(KEPLO_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
if(KEPLO_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all)
  add_link_options(-fsanitize=address,undefined)
endif()

# keplo_room(NAME [DEPENDS ...]): the library keplo_NAME from all sources below src/NAME.
function(keplo_room name)
  cmake_parse_arguments(ROOM "" "" "DEPENDS" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${name}/*.cpp)
  if(sources)
    add_library(keplo_${name} STATIC ${sources})
    target_link_libraries(keplo_${name} PUBLIC keplo_options ${ROOM_DEPENDS})
  else()
    add_library(keplo_${name} INTERFACE)
    target_link_libraries(keplo_${name} INTERFACE keplo_options ${ROOM_DEPENDS})
  endif()
endfunction()

# Optimised, g++ 12 also sees overflows in texts that tests add up from literals; they cannot happen either, and
# the sanitizers look at the same tests.
add_library(keplo_test_options INTERFACE)
target_compile_options(keplo_test_options INTERFACE
  $<$<CXX_COMPILER_ID:GNU>:-Wno-array-bounds -Wno-stringop-overflow -Wno-stringop-overread>)

# What ./test builds and runs.
add_custom_target(tests)

# keplo_room_test(NAME [DEPENDS ...] [PROPERTIES ...]): the test program of tests/NAME/*.cpp, and properties of
# each of its tests.
function(keplo_room_test name)
  cmake_parse_arguments(ROOM "" "" "DEPENDS;PROPERTIES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/${name}/*.cpp)
  if(sources)
    add_executable(${name}_test ${sources})
    target_include_directories(${name}_test PRIVATE ${CMAKE_SOURCE_DIR}/tests)
    target_link_libraries(${name}_test PRIVATE keplo_options keplo_test_options ${ROOM_DEPENDS} GTest::gtest GTest::gtest_main)
    # Each test file names its own data as it likes; the headers come precompiled instead.
    set_target_properties(${name}_test PROPERTIES UNITY_BUILD OFF)
    target_precompile_headers(${name}_test PRIVATE <gtest/gtest.h> <string> <vector>)
    add_dependencies(tests ${name}_test)
    gtest_discover_tests(${name}_test TEST_PREFIX ${name}. DISCOVERY_TIMEOUT 60 PROPERTIES ${ROOM_PROPERTIES})
  endif()
endfunction()
