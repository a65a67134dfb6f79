#include "system/AddressSpace.h"

#include <malloc.h>
#include <pthread.h>
#include <sys/resource.h>

#include <cstddef>

namespace velmora {

namespace {

constexpr std::size_t smallStack = std::size_t{1} << 20; // bytes

} // namespace

void saveAddressSpace() {
    rlimit space{};
    if (::getrlimit(RLIMIT_AS, &space) != 0 || space.rlim_cur == RLIM_INFINITY) {
        return;
    }
    ::mallopt(M_ARENA_MAX, 1);
    pthread_attr_t attributes;
    if (::pthread_attr_init(&attributes) == 0) {
        ::pthread_attr_setstacksize(&attributes, smallStack);
        ::pthread_setattr_default_np(&attributes);
        ::pthread_attr_destroy(&attributes);
    }
}

} // namespace velmora
