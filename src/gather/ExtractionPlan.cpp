#include "gather/ExtractionPlan.h"

#include "system/FileName.h"

namespace velmora::Collector {

namespace {

namespace fs = std::filesystem;

/// unzip takes a name with these for a pattern, and opens whatever matches it.
bool isPatternForUnzip(const fs::path& path) {
    return path.native().find_first_of("[*?") != std::string::npos;
}

} // namespace

std::vector<ExtractionStep> extractionPlan(const fs::path& archive, const fs::path& input,
                                           const fs::path& directory, UnzipTurn unzip) {
    const std::string name = lastComponent(archive);
    const std::string extension = classifyingExtension(archive);
    const std::vector<std::string> tarArguments = {"-x", "-f", input, "-C", directory};
    std::vector<ExtractionStep> plan;
    const auto addUnzip = [&](Ground ground) {
        // The fresh UUID in a copy's name keeps the pattern from matching any other file.
        if (input != archive || !isPatternForUnzip(input)) {
            plan.push_back({"/usr/bin/unzip", {"-qq", "-o", input, "-d", directory}, {}, ground});
        }
    };

    if (extension == "zip" || extension == "zipx") {
        plan.push_back({"/usr/bin/ditto", {"-x", "-k", "--noqtn", input, directory}, {}});
    }
    plan.push_back({"/usr/bin/tar", tarArguments, {}});
    if (unzip == UnzipTurn::asUsual) {
        addUnzip(Ground::shared);
    }
    if (const std::string_view stem = withoutExtension(name); !stem.empty()) {
        if (extension == "gz") {
            plan.push_back({"/usr/bin/gunzip", {"-c", input}, directory / stem});
        } else if (extension == "bz2") {
            plan.push_back({"/usr/bin/bunzip2", {"-c", input}, directory / stem});
        }
    }
    plan.push_back({"/usr/bin/bsdtar", tarArguments, {}, Ground::empty}); // reads 7z and rar
    if (unzip == UnzipTurn::last) {
        addUnzip(Ground::empty);
    }
    return plan;
}

} // namespace velmora::Collector
