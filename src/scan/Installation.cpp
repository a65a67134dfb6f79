#include "scan/Installation.h"

#include "confine/ConfinedChild.h"
#include "measure/FfprobeDuration.h"
#include "measure/libav/Libav.h"
#include "system/ChildProcess.h"

#include <QtGlobal>

#include <unicode/uversion.h>
#include <zip.h>

#include <array>
#include <ranges>
#include <string_view>

namespace velmora {

namespace {

struct Tool {
    std::string_view path;
    std::string_view costOfAbsence;
};

constexpr auto tools = std::to_array<Tool>({
    {"/usr/bin/tar", "tar archives are left to bsdtar"},
    {"/usr/bin/unzip", "zip archives are left to bsdtar"},
    {"/usr/bin/gunzip", "no gzip file is unpacked, nor a tar archive in one"},
    {"/usr/bin/bunzip2", "no bzip2 file is unpacked, nor a tar archive in one"},
    {"/usr/bin/xz", "tar archives packed by xz are left to bsdtar"},
    {"/usr/bin/bsdtar", "no 7z and no rar archive is unpacked"},
});

std::string icuVersion() {
    UVersionInfo version;
    u_getVersion(version);
    std::array<char, U_MAX_VERSION_STRING_LENGTH> text{};
    u_versionToString(version, text.data());
    return text.data();
}

/// `text`, what it holds line by line under a heading.
std::string section(std::string_view heading, std::string_view text, std::string_view insteadOfNothing) {
    std::string lines = std::string(heading) + ":\n";
    for (const auto line : std::views::split(text.empty() ? insteadOfNothing : text, '\n')) {
        if (!line.empty()) {
            lines += "  " + std::string(line.begin(), line.end()) + "\n";
        }
    }
    return lines;
}

std::string libraries() {
    return std::string("Qt ") + qVersion() + "\nICU " + icuVersion() + "\nlibzip " + zip_libzip_version() +
           "\n" + libavReport();
}

std::string toolLine(std::string_view path, std::string_view costOfAbsence) {
    return std::string(path) + (isExecutableFile(path) ? "" : ": not found, " + std::string(costOfAbsence)) +
           "\n";
}

std::string toolReport() {
    std::string text;
    for (const Tool& tool : tools) {
        text += toolLine(tool.path, tool.costOfAbsence);
    }
    const auto& ffprobe = Collector::ffprobePath();
    return text +
           toolLine(ffprobe ? ffprobe->native() : "ffprobe", "what nothing else can time stays unmeasured");
}

} // namespace

std::string installationReport() {
    return section("libraries", libraries(), "") +
           section("wall around tools", wallReport(),
                   "velmora-confine is not there: no archive is unpacked, and ffprobe is not asked") +
           section("tools", toolReport(), "");
}

} // namespace velmora
