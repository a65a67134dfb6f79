# Run by `cmake --install` for a file that names velmora: installs `file` into `folder`, with the path that the program in
# `programs` has now that the prefix is known. The session bus takes nothing less; a desktop may start before the folder
# is in its PATH.
cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_PREFIX OUTPUT_VARIABLE prefix)
cmake_path(ABSOLUTE_PATH programs BASE_DIRECTORY "${prefix}" NORMALIZE)
cmake_path(ABSOLUTE_PATH folder BASE_DIRECTORY "${prefix}" NORMALIZE)
set(program "${programs}/velmora")
if(program MATCHES "[\"`$\\%;\n]") # each kind of file would want another way to write them
  message(FATAL_ERROR "cannot be named in a desktop file: ${program}")
endif()
set(command "${program}")
if(command MATCHES "[^A-Za-z0-9_+,./:=@-]")
  set(command "\"${program}\"")
endif()

file(READ "${file}" text)
string(REPLACE "\nExec=velmora" "\nExec=${command}" text "${text}")
string(REPLACE "\nTryExec=velmora" "\nTryExec=${program}" text "${text}")
string(REPLACE "\nDependencies=velmora;" "\nDependencies=${program};" text "${text}")

cmake_path(GET file FILENAME name)
set(installed "${folder}/${name}")
message(STATUS "Installing: $ENV{DESTDIR}${installed}")
file(REMOVE "$ENV{DESTDIR}${installed}")
file(WRITE "$ENV{DESTDIR}${installed}" "${text}")
file(CHMOD "$ENV{DESTDIR}${installed}" PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
list(APPEND CMAKE_INSTALL_MANIFEST_FILES "${installed}")
