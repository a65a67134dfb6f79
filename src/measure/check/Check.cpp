#include "measure/check/Check.h"

#include "measure/bytes/AudioTags.h"
#include "measure/check/Examination.h"
#include "measure/check/ForeignFormat.h"
#include "measure/check/FormatChecks.h"
#include "system/RegularFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <string_view>

namespace velmora {

namespace {

struct Row {
    std::string_view format; ///< as the table of formats calls it
    FormatCheck check;
};

constexpr auto checks = std::to_array<Row>({
    {"FLAC", &checkFlac},
    {"Ogg", &checkOgg},
    {"WavPack", &checkWavPack},
    {"Musepack SV8", &checkMusepack},
    {"MP4", &checkMp4},
    {"Matroska", &checkMatroska},
    {"ASF", &checkAsf},
    {"WAV", &checkWav},
    {"AIFF", &checkAiff},
    {"AIFF-C", &checkAiff},
});

/// Checks content in `format`; returns up to where all bytes were read.
std::int64_t checkFormat(Examination& file, std::int64_t start, const Format& format) {
    const auto* const row = std::ranges::find(checks, format.name.text(), &Row::format);
    if (row != checks.end()) {
        return row->check(file, start);
    }
    return format.read == nullptr ? start : checkStatement(file, start, format.read);
}

void checkContent(Examination& file, const std::filesystem::path& name) {
    GuardedReader header = file.header();
    const std::int64_t start = skipLeadingTags(header);
    const Format* const format = formatAt(header, start);
    std::optional<std::string_view> found;
    if (format != nullptr) {
        found = format->name.text();
        file.readThrough(checkFormat(file, start, *format));
    } else {
        found = checkFrames(file, start);
    }
    if (found && isForeign(name, *found)) {
        file.note(FindingKind::foreign);
    }
}

/// The bytes of `file`, whose reads are told to `read`, and a failure to `checked`. All must outlive it.
ByteSource watchedSource(const RegularFile& file, const ReadNote& read, Checked& checked) {
    const auto readAt = [&](std::int64_t offset, std::span<std::uint8_t> buffer) {
        const std::optional<std::size_t> got = file.readAt(offset, buffer);
        if (!got && offset >= 0) {
            checked.error = errno;
        }
        if (read) {
            read(static_cast<std::int64_t>(got.value_or(0)));
        }
        return got;
    };
    return {file.size(), readAt, file.descriptor()};
}

} // namespace

Checked checkFile(const std::filesystem::path& path, const std::stop_token& stop, const ReadNote& read) {
    Checked checked;
    if (const std::optional<RegularFile> file = RegularFile::open(path)) {
        Examination examination(watchedSource(*file, read, checked), stop);
        checkContent(examination, path);
        checked.findings = examination.findings();
    }
    return checked;
}

} // namespace velmora
