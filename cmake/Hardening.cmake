# What makes a defect harder to exploit, and keeps the paths of the machine that built it out of what is installed. Link
# `hardened` into all that ends up in an installed program. Not where sanitizers or coverage look: they do more, and
# collide with it.
include(CheckCXXCompilerFlag)
add_library(hardened INTERFACE)
if(VELMORA_SANITIZE OR VELMORA_COVERAGE)
  return()
endif()

string(TOUPPER "CMAKE_CXX_FLAGS_${CMAKE_BUILD_TYPE}" of_this_type)
set(given "${CMAKE_CXX_FLAGS} ${${of_this_type}}")

# hardened_by(FLAG): unless it is given already, as packagers do, or this machine's compiler has none such.
function(hardened_by flag)
  string(REGEX REPLACE "[^A-Za-z0-9]+" "_" answer "VELMORA_TAKES${flag}")
  check_cxx_compiler_flag(${flag} ${answer})
  string(FIND "${given}" "${flag}" place)
  if(${answer} AND place EQUAL -1)
    target_compile_options(hardened INTERFACE ${flag})
  endif()
endfunction()
hardened_by(-fstack-protector-strong)
hardened_by(-fstack-clash-protection)
hardened_by(-fcf-protection)                 # x86
hardened_by(-mbranch-protection=standard)    # ARM
if(given MATCHES "-O[123s]" AND NOT given MATCHES "_FORTIFY_SOURCE") # it needs an optimiser
  target_compile_options(hardened INTERFACE -D_FORTIFY_SOURCE=3)
endif()
if(NOT given MATCHES "-ffile-prefix-map") # the last one that fits holds
  target_compile_options(hardened INTERFACE
    -ffile-prefix-map=${CMAKE_SOURCE_DIR}=. -ffile-prefix-map=${CMAKE_BINARY_DIR}=.)
endif()
if(NOT CMAKE_EXE_LINKER_FLAGS MATCHES "-z,now")
  target_link_options(hardened INTERFACE -Wl,-z,relro -Wl,-z,now)
endif()
