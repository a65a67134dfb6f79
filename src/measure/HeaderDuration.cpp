#include "measure/HeaderDuration.h"

#include "measure/formats/AsfDuration.h"
#include "measure/formats/FormatTable.h"
#include "measure/formats/OggDuration.h"
#include "system/RegularFile.h"

namespace velmora::HeaderDuration {

namespace {

std::optional<double> readPath(HeaderReader reader, const std::filesystem::path& path) {
    const std::optional<RegularFile> file = RegularFile::open(path);
    const std::optional<Timing> timing = file ? reader(sourceOf(*file)) : std::nullopt;
    return timing ? std::optional(timing->seconds) : std::nullopt;
}

} // namespace

std::optional<Timed> timed(const std::filesystem::path& path, const ByteSource& source) {
    const HeaderFormat* const format = headerFormatOf(path);
    const std::optional<Timing> timing = format == nullptr ? std::nullopt : format->read(source);
    return timing ? std::optional(Timed{*timing, format->name}) : std::nullopt;
}

std::optional<double> seconds(const std::filesystem::path& path) {
    const HeaderFormat* const format = headerFormatOf(path);
    return format == nullptr ? std::nullopt : readPath(format->read, path);
}

std::optional<double> ogg(const std::filesystem::path& path) {
    return readPath(&oggTiming, path);
}

std::optional<double> asf(const std::filesystem::path& path) {
    return readPath(&asfTiming, path);
}

} // namespace velmora::HeaderDuration
