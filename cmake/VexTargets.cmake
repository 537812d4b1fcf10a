# Helpers that every folder uses: one line declares a library, a program or a test.

# What every target of ours is compiled with.
add_library(vex_options INTERFACE)
target_compile_options(vex_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 reports these of its own inlined std::string and std::array code (bugs 105651 and 106199).
  target_compile_options(vex_options INTERFACE -Wno-restrict -Wno-stringop-overflow)
endif()
target_compile_definitions(vex_options INTERFACE VEX_VERSION="${PROJECT_VERSION}" _FILE_OFFSET_BITS=64)
if(VEX_SANITIZE OR VEX_FUZZ)
  target_compile_options(vex_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(vex_options INTERFACE -fsanitize=address,undefined)
endif()
if(VEX_FUZZ)
  target_compile_options(vex_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# vex_library(NAME SOURCES... [LINK targets...]): a static library whose headers are included as
# "folder/Header.h" from src/.
function(vex_library name)
  cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
  add_library(${name} STATIC ${ARG_UNPARSED_ARGUMENTS})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC ${ARG_LINK} PRIVATE vex_options)
endfunction()

# vex_program(NAME SOURCES... [LINK targets...])
function(vex_program name)
  cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
  add_executable(${name} ${ARG_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE ${ARG_LINK} vex_options)
endfunction()

# vex_test(NAME SOURCES... [LINK targets...]): one GoogleTest program, its cases found by CTest.
function(vex_test name)
  cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
  add_executable(${name} ${ARG_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE ${ARG_LINK} test_support GTest::gmock_main vex_options)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)
endfunction()
