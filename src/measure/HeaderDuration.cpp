#include "measure/HeaderDuration.h"

#include "measure/bytes/ByteSource.h"
#include "measure/formats/AsfDuration.h"
#include "measure/formats/OggDuration.h"
#include "system/FileName.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace velmora::HeaderDuration {

namespace {

using Reader = std::optional<double> (*)(const ByteSource&);

struct Format {
    std::string_view extension; // in lower case
    Reader reader;
};

constexpr std::array<Format, 8> formats = {{
    {"ogg", oggSeconds},
    {"oga", oggSeconds},
    {"opus", oggSeconds},
    {"ogx", oggSeconds},
    {"spx", oggSeconds},
    {"wma", asfSeconds},
    {"asf", asfSeconds},
    {"wmv", asfSeconds},
}};

/// The reader for `path`; null when its extension belongs to none.
Reader readerFor(const std::filesystem::path& path) {
    const std::string extension = classifyingExtension(path);
    const auto* const format = std::find_if(formats.begin(), formats.end(), [&](const Format& candidate) {
        return candidate.extension == extension;
    });
    return format == formats.end() ? nullptr : format->reader;
}

std::optional<double> readPath(Reader reader, const std::filesystem::path& path) {
    const std::optional<RegularFile> file = RegularFile::open(path);
    return file ? reader(sourceOf(*file)) : std::nullopt;
}

} // namespace

std::optional<double> seconds(const std::filesystem::path& path, const RegularFile& file) {
    const Reader reader = readerFor(path);
    return reader != nullptr ? reader(sourceOf(file)) : std::nullopt;
}

std::optional<double> seconds(const std::filesystem::path& path) {
    const Reader reader = readerFor(path);
    return reader != nullptr ? readPath(reader, path) : std::nullopt;
}

std::optional<double> ogg(const RegularFile& file) {
    return oggSeconds(sourceOf(file));
}

std::optional<double> ogg(const std::filesystem::path& path) {
    return readPath(oggSeconds, path);
}

std::optional<double> asf(const RegularFile& file) {
    return asfSeconds(sourceOf(file));
}

std::optional<double> asf(const std::filesystem::path& path) {
    return readPath(asfSeconds, path);
}

} // namespace velmora::HeaderDuration
