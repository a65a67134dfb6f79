#include "measure/check/FormatChecks.h"

namespace velmora {

std::int64_t checkStatement(Examination& file, std::int64_t start, FormatReader reader) {
    GuardedReader header = file.header();
    const std::optional<Timing> timing = reader(header, start);
    if (timing && (timing->doubt == Doubt::beyondEnd || timing->doubt == Doubt::disagrees)) {
        file.compare({.stated = timing->stated, .found = timing->seconds}, paddingTolerance);
    }
    return start;
}

} // namespace velmora
