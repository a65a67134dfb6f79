#include "measure/HeaderDuration.h"

#include "measure/formats/AsfDuration.h"
#include "measure/formats/FormatTable.h"
#include "measure/formats/OggDuration.h"
#include "system/RegularFile.h"

namespace velmora::HeaderDuration {

namespace {

std::optional<double> readPath(HeaderReader reader, const std::filesystem::path& path) {
    const std::optional<RegularFile> file = RegularFile::open(path);
    return file ? reader(sourceOf(*file)) : std::nullopt;
}

} // namespace

std::optional<Timed> timed(const std::filesystem::path& path, const ByteSource& source) {
    const HeaderFormat* const format = headerFormatOf(path);
    const std::optional<double> seconds = format == nullptr ? std::nullopt : format->read(source);
    if (!seconds) {
        return std::nullopt;
    }
    const bool isStated = format->basis == Basis::stated;
    return Timed{{.seconds = *seconds,
                  .basis = format->basis,
                  .stated = isStated ? seconds : std::nullopt,
                  .way = Way::headerReader},
                 std::string(format->name)};
}

std::optional<double> seconds(const std::filesystem::path& path) {
    const HeaderFormat* const format = headerFormatOf(path);
    return format == nullptr ? std::nullopt : readPath(format->read, path);
}

std::optional<double> ogg(const std::filesystem::path& path) {
    return readPath(&oggSeconds, path);
}

std::optional<double> asf(const std::filesystem::path& path) {
    return readPath(&asfSeconds, path);
}

} // namespace velmora::HeaderDuration
