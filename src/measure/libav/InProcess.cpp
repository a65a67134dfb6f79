#include "measure/libav/DirectLibav.h"

namespace velmora {

// For a program that links this in the place of the helper.
const Libav& libav() {
    static const DirectLibav direct;
    return direct;
}

} // namespace velmora
