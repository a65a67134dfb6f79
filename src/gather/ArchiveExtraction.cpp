#include "gather/ArchiveExtraction.h"

#include "gather/ExtractionPlan.h"
#include "gather/ToolRunner.h"
#include "gather/ZipNames.h"
#include "system/FileCopy.h"
#include "system/FileName.h"
#include "system/OwnerAccess.h"
#include "system/RegularFile.h"
#include "system/RemoveTree.h"
#include "system/TempRegistry.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

namespace velmora::Collector {

namespace {

namespace fs = std::filesystem;

/// A copy of an archive in the temporary directory, for the tools to read; deleted with its owner.
class WorkingCopy {
public:
    WorkingCopy(const fs::path& archive, const std::stop_token& stop)
        : m_path(TempRegistry::freshPath("src-")) {
        m_path += "-" + lastComponent(archive);
        try {
            copyFile(archive, m_path, stop);
        } catch (const fs::filesystem_error&) {
            m_path.clear();
        }
    }

    WorkingCopy(const WorkingCopy&) = delete;
    WorkingCopy& operator=(const WorkingCopy&) = delete;

    ~WorkingCopy() {
        if (!m_path.empty()) {
            ::unlink(m_path.c_str());
        }
    }

    /// Empty when no copy could be made.
    const fs::path& path() const { return m_path; }

private:
    fs::path m_path;
};

bool unpack(const fs::path& archive, const fs::path& directory, const std::stop_token& stop) {
    const WorkingCopy copy(archive, stop);
    const fs::path& input = copy.path().empty() ? archive : copy.path();
    const UnzipTurn unzip = unzipGarblesNames(input) ? UnzipTurn::last : UnzipTurn::asUsual;
    const std::vector<ExtractionStep> plan = extractionPlan(archive, input, directory, unzip);
    return std::any_of(plan.begin(), plan.end(), [&](const ExtractionStep& step) {
        return step.out ? runCapturing(step.tool, step.args, *step.out, stop)
                        : run(step.tool, step.args, stop);
    });
}

} // namespace

std::optional<fs::path> extract(const fs::path& url, const std::stop_token& stop) {
    if (!RegularFile::open(url)) {
        return std::nullopt;
    }
    fs::path directory = TempRegistry::freshPath("");
    if (::mkdir(directory.c_str(), S_IRWXU) != 0) {
        return std::nullopt;
    }
    if (!unpack(url, directory, stop) || stop.stop_requested()) {
        removeTree(directory);
        return std::nullopt;
    }
    ::chmod(directory.c_str(), S_IRWXU); // an archive may hold permissions for its top folder, too
    grantOwnerBelow(directory);
    return directory;
}

} // namespace velmora::Collector
