#include "gather/ArchiveExtraction.h"

#include "gather/ExtractionPlan.h"
#include "gather/ToolRunner.h"
#include "gather/ZipNames.h"
#include "system/FileCopy.h"
#include "system/FileName.h"
#include "system/OwnerAccess.h"
#include "system/RegularFile.h"
#include "system/TempRegistry.h"
#include "system/TemporaryDirectory.h"

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
    std::optional<TemporaryDirectory> directory = TemporaryDirectory::make(TempRegistry::freshPath(""));
    if (!directory || !unpack(url, directory->path(), stop) || stop.stop_requested()) {
        return std::nullopt;
    }
    ::chmod(directory->path().c_str(), S_IRWXU); // an archive may hold permissions for its top folder, too
    grantOwnerBelow(directory->path());
    return directory->release();
}

} // namespace velmora::Collector
