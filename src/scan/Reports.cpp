// What the scan model's result reads like in text: the two reports for the clipboard, the proposal for a
// zip's name.

#include "scan/Reports.h"

#include "records/AudioExtensions.h"
#include "records/DisplayFormat.h"
#include "scan/ScanModel.h"
#include "system/FileName.h"
#include "system/UnicodeCase.h"

#include <string_view>
#include <system_error>

namespace velmora {

namespace {

namespace fs = std::filesystem;

/// `name` without the audio and archive extensions at its end, however many: "show.tar.gz" -> "show".
std::string_view withoutKnownExtensions(std::string_view name) {
    for (;;) {
        const std::string extension = lowerCased(extensionOf(name));
        if (!Collector::isAudio(extension) && !Collector::isArchive(extension) && extension != "tar") {
            return name;
        }
        name = withoutExtension(name);
    }
}

} // namespace

std::string totalText(const ScanSummary& summary, double speed) {
    const double seconds = displayable(summary.seconds / speed);
    std::string text = "TOTAL RUNTIME  " + hms(seconds) + "   (" + longForm(seconds) + ")\n";
    text += std::to_string(summary.fileCount) + " audio file" + (summary.fileCount == 1 ? "" : "s");
    if (!summary.source.empty()) {
        text += " \u2014 " + summary.source;
    }
    return text;
}

void eachName(const PathList& files, const std::function<void(std::string_view part)>& out) {
    std::string line;
    for (auto file = files.begin(); file != PathList::end(); ++file) {
        line.append(file.bytes(), file.bytes().rfind('/') + 1); // all without a slash
        out(line);
        line = '\n';
    }
}

std::string ScanModel::totalText(double speed) const {
    return velmora::totalText(m_summary, speed);
}

std::string ScanModel::fileListText() const {
    std::string text;
    eachName(m_summary.files, [&](std::string_view part) { text += part; });
    return text;
}

std::string ScanModel::suggestedZipName() const {
    if (m_summary.dropped.size() != 1) {
        return "Audio.zip";
    }
    const fs::path dropped = m_summary.dropped.front();
    const std::string fullName = lastComponent(dropped);
    std::string name(withoutKnownExtensions(fullName));
    if (name.empty()) {
        name = "Audio";
    }
    std::error_code ignored;
    return name + (fs::is_directory(dropped, ignored) ? ".zip" : " audio.zip");
}

std::optional<fs::path> ScanModel::suggestedZipDirectory() const {
    if (m_summary.dropped.empty()) {
        return std::nullopt;
    }
    return fs::path(standardized(m_summary.dropped.front())).parent_path();
}

} // namespace velmora
