# Compiler settings shared by every target, and the two functions that declare them.

set(CMAKE_CXX_STANDARD 23)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

find_program(MOLD mold)
if(MOLD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_link_options(-fuse-ld=mold)
elseif(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  add_link_options(-fuse-ld=lld)
endif()

set(TEVRIN_SANITIZE "" CACHE STRING "Value of -fsanitize= for every object, or nothing")

add_library(tevrin_options INTERFACE)
target_include_directories(tevrin_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(tevrin_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Wold-style-cast
  -Woverloaded-virtual -Wundef -Wcast-align -Wformat=2)
if(TEVRIN_WERROR)
  target_compile_options(tevrin_options INTERFACE -Werror)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  target_compile_options(tevrin_options INTERFACE -Wthread-safety)
else()
  # -Wrestrict of GCC 12 misfires on adding strings (GCC bug 105329).
  target_compile_options(tevrin_options INTERFACE -Wduplicated-cond -Wlogical-op -Wno-restrict)
endif()

if(TEVRIN_SANITIZE)
  add_compile_options(-fsanitize=${TEVRIN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  string(REPLACE "fuzzer-no-link," "" link_sanitize ${TEVRIN_SANITIZE})
  add_link_options(-fsanitize=${link_sanitize})
endif()

if(CMAKE_BUILD_TYPE STREQUAL "Release")
  add_compile_options(-D_FORTIFY_SOURCE=2 -D_GLIBCXX_ASSERTIONS -fstack-protector-strong -fstack-clash-protection
    -fcf-protection)
  add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
  add_link_options(-pie)
endif()

# tevrin_library(NAME SOURCES... LINKS...): one library for one folder; it sees only what it links.
function(tevrin_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE tevrin_options PUBLIC ${ARG_LINKS})
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR})
endfunction()

# tevrin_test(NAME SOURCES... LINKS...): one suite for one folder, its cases registered with CTest.
function(tevrin_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE tevrin_options ${ARG_LINKS} GTest::gmock GTest::gtest_main)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT 120)
endfunction()
