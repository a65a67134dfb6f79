#include "measure/MeasurementPipeline.h"

#include "measure/FfprobeDuration.h"
#include "measure/HeaderDuration.h"
#include "measure/MediaDuration.h"
#include "system/RegularFile.h"

#include <sys/stat.h>

#include <cmath>
#include <optional>

namespace velmora::Collector {

namespace {

/// What libavformat says must be longer than this, in seconds, to be believed.
constexpr double tooShort = 0.001;

bool isCredible(const std::optional<double>& seconds) {
    return seconds && *seconds > tooShort && std::isfinite(*seconds);
}

std::int64_t sizeAt(const std::filesystem::path& url) {
    struct stat status {};

    return ::stat(url.c_str(), &status) == 0 ? status.st_size : 0;
}

double secondsOf(const std::filesystem::path& url, const RegularFile& file, const std::stop_token& stop) {
    if (stop.stop_requested()) {
        return unmeasured;
    }
    if (const std::optional<double> stated = HeaderDuration::seconds(url, file)) {
        return *stated;
    }
    const MediaAnswer media = mediaDuration(file, url, stop);
    if (media.isForeign) {
        return unmeasured;
    }
    return isCredible(media.seconds) ? *media.seconds : ffprobeSeconds(url, stop);
}

} // namespace

Measured measure(const std::filesystem::path& url, const std::stop_token& stop) {
    const std::optional<RegularFile> file = RegularFile::open(url);
    if (!file) {
        return {url, unmeasured, sizeAt(url)};
    }
    return {url, secondsOf(url, *file, stop), file->size()};
}

} // namespace velmora::Collector
