# The two interface targets every other target links, and one function that makes a folder a library.

set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

add_library(standard_settings INTERFACE)
target_compile_features(standard_settings INTERFACE cxx_std_20)
target_include_directories(standard_settings INTERFACE ${CMAKE_SOURCE_DIR}/src)
target_compile_definitions(standard_settings INTERFACE _FILE_OFFSET_BITS=64)
set_target_properties(standard_settings PROPERTIES INTERFACE_POSITION_INDEPENDENT_CODE ON)
# Programs, too: what is compiled for them could not share precompiled headers with libraries otherwise.
target_compile_options(standard_settings INTERFACE -fPIC $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>) # which ccache needs
if(VELMORA_SANITIZE)
  target_compile_options(standard_settings INTERFACE
    -fsanitize=${VELMORA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>) # it sees ghosts in instrumented library code
  target_link_options(standard_settings INTERFACE -fsanitize=${VELMORA_SANITIZE})
endif()

if(VELMORA_COVERAGE) # for all targets, also those that go without standard_settings
  add_compile_options(--coverage -fprofile-update=atomic)
  add_link_options(--coverage -Wl,--wrap=_exit)
  add_library(velmora_counts_at_exit STATIC tools/CountsAtExit.cpp)
  set_target_properties(velmora_counts_at_exit PROPERTIES POSITION_INDEPENDENT_CODE ON)
  link_libraries(velmora_counts_at_exit)
endif()

add_library(standard_warnings INTERFACE)
target_compile_options(standard_warnings INTERFACE
  -Wall -Wextra -Wconversion -Wshadow
  $<$<BOOL:${VELMORA_WARNINGS_AS_ERRORS}>:-Werror>)

# velmora_precompiled(NAME HEADER [LINKS target...]): compiles HEADER once. Files that take it with REUSE_FROM spend half
# of the time; each still includes what it uses.
function(velmora_precompiled name header)
  cmake_parse_arguments(ARG "" "" "LINKS" ${ARGN})
  file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp CONTENT "")
  add_library(${name} OBJECT ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
  target_link_libraries(${name} PRIVATE standard_settings ${ARG_LINKS})
  target_precompile_headers(${name} PRIVATE ${header})
endfunction()
velmora_precompiled(velmora_standard_headers ${CMAKE_SOURCE_DIR}/cmake/StandardHeaders.h LINKS hardened)

# velmora_library(NAME SOURCES file... [LINKS target...]): one folder of src/ as a static library.
function(velmora_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC standard_settings ${ARG_LINKS} PRIVATE standard_warnings hardened)
  target_precompile_headers(${name} REUSE_FROM velmora_standard_headers)
endfunction()
