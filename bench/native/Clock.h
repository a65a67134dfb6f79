#pragma once

#include <time.h>

namespace velmora::bench {

/// What `clock` of clock_gettime(2) shows.
inline double seconds(clockid_t clock) {
    timespec now{};
    ::clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

} // namespace velmora::bench
