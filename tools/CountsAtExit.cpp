// Part of every program of a build that counts lines. The counts are written where exit() is called; this has
// them written where _exit() is as well, with which forked processes end. What is killed, and what a wall
// keeps from opening files, still loses its counts.

// NOLINTBEGIN(bugprone-reserved-identifier): names that the linker's --wrap gives
extern "C" {

#include <gcov.h>

[[noreturn]] void __real__exit(int status); // the C library's

[[noreturn]] void __wrap__exit(int status) {
    __gcov_dump();
    __real__exit(status);
}
}
// NOLINTEND(bugprone-reserved-identifier)
