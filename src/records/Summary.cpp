#include "records/Summary.h"

#include "system/FileName.h"
#include "system/UnicodeCase.h"

#include <algorithm>
#include <functional>
#include <map>
#include <string>

namespace velmora {

ScanSummary summarize(const std::vector<Measured>& files) {
    ScanSummary summary;
    std::map<std::string, FormatStat> formats;
    PathListMaker measured;
    for (const Measured& file : files) {
        if (file.seconds < 0) {
            ++summary.unreadable;
            continue;
        }
        measured.add(file.url.native());
        summary.seconds += file.seconds;
        summary.fileCount += 1;
        summary.bytes += file.bytes;

        const std::string key = upperCased(extensionOf(file.url.name()));
        FormatStat& format = formats.try_emplace(key, FormatStat{key, 0, 0}).first->second;
        format.count += 1;
        format.seconds += file.seconds;

        if (file.seconds > summary.longestSeconds) {
            summary.longestSeconds = file.seconds;
            summary.longestName = lastComponent(file.url);
        }
    }
    summary.files = measured.list();
    for (const auto& [key, format] : formats) {
        summary.formats.push_back(format);
    }
    std::ranges::stable_sort(summary.formats, std::ranges::greater(), &FormatStat::seconds);
    return summary;
}

} // namespace velmora
