#pragma once

// What the replaced functions of the C library share.

#include "tests/faults/FaultPlan.h"

#include <dlfcn.h>

#include <cerrno>

/// The function that a name would have led to without this library.
#define VELMORA_REAL(name)                                                                                   \
    ([] {                                                                                                    \
        static const auto real = reinterpret_cast<decltype(&::name)>(::dlsym(RTLD_NEXT, #name));             \
        return real;                                                                                         \
    }())

namespace velmora::faults {

/// `result` with the fault's errno, for a call that says so by its result.
template <typename Result>
Result failed(const Fault& fault, Result result) {
    errno = fault.error;
    return result;
}

} // namespace velmora::faults
