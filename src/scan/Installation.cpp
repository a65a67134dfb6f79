#include "scan/Installation.h"

#include "confine/ConfinedChild.h"
#include "measure/FfprobeDuration.h"
#include "measure/libav/Libav.h"
#include "system/ChildProcess.h"

#include <QtGlobal>

#include <unicode/uversion.h>
#include <zip.h>

#include <array>
#include <sstream>
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

/// The lines of `text` under a heading; of `insteadOfNothing` where it is empty.
std::string section(std::string_view heading, const std::string& text, const char* insteadOfNothing) {
    std::string lines = std::string(heading) + ":\n";
    std::istringstream stream(text.empty() ? insteadOfNothing : text);
    for (std::string line; std::getline(stream, line);) {
        lines += "  " + line + "\n";
    }
    return lines;
}

std::string libraries() {
    const std::string libav = libavReport();
    return std::string("Qt ") + qVersion() + "\nICU " + icuVersion() + "\nlibzip " + zip_libzip_version() +
           "\n" +
           (libav.empty() ? "velmora-libav is not there: what our own readers cannot tell is left to ffprobe"
                          : libav);
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
