#include "measure/formats/RealMediaDuration.h"

#include "measure/libav/Libav.h"

namespace velmora {

std::optional<Timing> realMediaDuration(GuardedReader& reader, std::int64_t start) {
    return libav().duration(reader, start, "rm", Doubt::unfinished);
}

} // namespace velmora
