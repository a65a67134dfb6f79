// What the scan model's result reads like in text: the two reports for the clipboard, the proposal for a
// zip's name.

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

std::string ScanModel::totalText(double speed) const {
    const double seconds = displayable(m_summary.seconds / speed);
    std::string text = "TOTAL RUNTIME  " + hms(seconds) + "   (" + longForm(seconds) + ")\n";
    text += std::to_string(m_summary.fileCount) + " audio file" + (m_summary.fileCount == 1 ? "" : "s");
    if (!m_summary.source.empty()) {
        text += " \u2014 " + m_summary.source;
    }
    return text;
}

std::string ScanModel::fileListText() const {
    std::string text;
    for (const fs::path& file : m_summary.files) {
        text += (text.empty() ? "" : "\n") + lastComponent(file);
    }
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
