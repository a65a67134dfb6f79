// The calls about descriptors, memory, processes and threads.

#include "tests/faults/Replacing.h"

#include <netdb.h>
#include <poll.h>
#include <pthread.h>
#include <spawn.h>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

using velmora::faults::failed;
using velmora::faults::Fault;
using velmora::faults::faultOf;

// The C library's own allocation, which dlsym cannot be asked for: it allocates.
extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);
extern "C" void* __libc_realloc(void* memory, std::size_t size);

namespace {

constexpr std::size_t largeAllocation = std::size_t{64} << 10; ///< from here on allocations are counted

bool isLargeFailure(std::size_t size) {
    if (size < largeAllocation) {
        return false;
    }
    const Fault fault = faultOf("malloc");
    if (fault) {
        errno = ENOMEM;
    }
    return static_cast<bool>(fault);
}

} // namespace

// NOLINTBEGIN: the C library's own names and parameters
extern "C" {

// --- descriptors, memory

int eventfd(unsigned count, int flags) noexcept {
    const Fault fault = faultOf("descriptor");
    return fault ? failed(fault, -1) : VELMORA_REAL(eventfd)(count, flags);
}

int signalfd(int descriptor, const sigset_t* signals, int flags) noexcept {
    const Fault fault = faultOf("descriptor");
    return fault ? failed(fault, -1) : VELMORA_REAL(signalfd)(descriptor, signals, flags);
}

int memfd_create(const char* name, unsigned flags) noexcept {
    const Fault fault = faultOf("descriptor");
    return fault ? failed(fault, -1) : VELMORA_REAL(memfd_create)(name, flags);
}

int pipe2(int* ends, int flags) noexcept {
    const Fault fault = faultOf("descriptor");
    return fault ? failed(fault, -1) : VELMORA_REAL(pipe2)(ends, flags);
}

void* mmap(void* address, size_t size, int protection, int flags, int descriptor, off_t offset) noexcept {
    const Fault fault = faultOf("mmap", descriptor);
    return fault ? failed(fault, MAP_FAILED)
                 : VELMORA_REAL(mmap)(address, size, protection, flags, descriptor, offset);
}

void* mmap64(void* address, size_t size, int protection, int flags, int descriptor, off64_t offset) noexcept {
    return mmap(address, size, protection, flags, descriptor, offset);
}

void* malloc(size_t size) noexcept {
    return isLargeFailure(size) ? nullptr : __libc_malloc(size);
}

void* calloc(size_t count, size_t size) noexcept {
    return isLargeFailure(count * size) ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* memory, size_t size) noexcept {
    return isLargeFailure(size) ? nullptr : __libc_realloc(memory, size);
}

// --- processes, threads

int posix_spawn(pid_t* child, const char* path, const posix_spawn_file_actions_t* actions,
                const posix_spawnattr_t* attributes, char* const* words, char* const* environment) noexcept {
    const Fault fault = faultOf("posix_spawn", path);
    return fault ? fault.error
                 : VELMORA_REAL(posix_spawn)(child, path, actions, attributes, words, environment);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                   void* argument) noexcept {
    const Fault fault = faultOf("pthread_create");
    return fault ? fault.error : VELMORA_REAL(pthread_create)(thread, attributes, start, argument);
}

int waitid(idtype_t kind, id_t id, siginfo_t* info, int options) {
    const Fault fault = faultOf("wait");
    return fault ? failed(fault, -1) : VELMORA_REAL(waitid)(kind, id, info, options);
}

pid_t waitpid(pid_t child, int* status, int options) {
    const Fault fault = faultOf("wait");
    return fault ? failed(fault, -1) : VELMORA_REAL(waitpid)(child, status, options);
}

int poll(pollfd* descriptors, nfds_t count, int timeout) {
    const Fault fault = faultOf("poll");
    return fault ? failed(fault, -1) : VELMORA_REAL(poll)(descriptors, count, timeout);
}

int getaddrinfo(const char* host, const char* service, const addrinfo* hints, addrinfo** found) {
    const Fault fault = faultOf("getaddrinfo", host);
    return fault ? EAI_AGAIN : VELMORA_REAL(getaddrinfo)(host, service, hints, found);
}

/// Which thread ended the program stands in the log.
[[noreturn]] void _exit(int status) {
    faultOf("_exit", ::getpid() == ::gettid() ? "main thread" : "another thread");
    VELMORA_REAL(_exit)(status);
    __builtin_unreachable();
}

} // extern "C"
// NOLINTEND
