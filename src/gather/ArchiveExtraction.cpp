#include "gather/ArchiveExtraction.h"

#include "gather/TempRegistry.h"
#include "gather/ToolRunner.h"
#include "system/FileCopy.h"
#include "system/FileName.h"
#include "system/OwnerAccess.h"
#include "system/RegularFile.h"
#include "system/RemoveTree.h"

#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <string_view>
#include <vector>

namespace velmora::Collector {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view dittoTool = "/usr/bin/ditto";
constexpr std::string_view tarTool = "/usr/bin/tar";
constexpr std::string_view unzipTool = "/usr/bin/unzip";
constexpr std::string_view gunzipTool = "/usr/bin/gunzip";
constexpr std::string_view bunzip2Tool = "/usr/bin/bunzip2";
constexpr std::string_view bsdtarTool = "/usr/bin/bsdtar";

/// What the tools read: a copy of the archive in the temporary directory, deleted at the end, or the archive
/// itself where no copy can be made.
class ToolInput {
public:
    ToolInput(const fs::path& archive, const std::stop_token& stop)
        : m_path(TempRegistry::freshPath("src-")) {
        m_path += "-" + lastComponent(archive);
        try {
            copyFile(archive, m_path, stop);
        } catch (const fs::filesystem_error&) {
            m_path = archive;
            m_isCopy = false;
        }
    }

    ToolInput(const ToolInput&) = delete;
    ToolInput& operator=(const ToolInput&) = delete;

    ~ToolInput() {
        if (m_isCopy) {
            ::unlink(m_path.c_str());
        }
    }

    const std::string& path() const { return m_path.native(); }

    /// Whether unzip, which takes some names for patterns, would open this file and no other. The fresh UUID
    /// in a copy's name sees to that.
    bool isPlainForUnzip() const { return m_isCopy || path().find_first_of("[*?") == std::string::npos; }

private:
    fs::path m_path;
    bool m_isCopy = true;
};

/// The attempts to unpack one archive.
class Extraction {
public:
    Extraction(const fs::path& archive, const fs::path& directory, const std::stop_token& stop)
        : m_input(archive, stop)
        , m_name(lastComponent(archive))
        , m_extension(classifyingExtension(archive))
        , m_directory(directory)
        , m_stop(stop) {}

    bool succeeds() const {
        return byDitto() || byTar(tarTool) || byUnzip() || asSingleFile() || byTar(bsdtarTool);
    }

private:
    bool byDitto() const {
        return (m_extension == "zip" || m_extension == "zipx") &&
               run(dittoTool, {"-x", "-k", "--noqtn", m_input.path(), m_directory}, m_stop);
    }

    bool byTar(std::string_view tool) const {
        return run(tool, {"-x", "-f", m_input.path(), "-C", m_directory}, m_stop);
    }

    bool byUnzip() const {
        return m_input.isPlainForUnzip() &&
               run(unzipTool, {"-qq", "-o", m_input.path(), "-d", m_directory}, m_stop);
    }

    bool asSingleFile() const {
        const std::string_view stem = withoutExtension(m_name);
        if (stem.empty() || (m_extension != "gz" && m_extension != "bz2")) {
            return false;
        }
        return runCapturing(m_extension == "gz" ? gunzipTool : bunzip2Tool, {"-c", m_input.path()},
                            m_directory / stem, m_stop);
    }

    ToolInput m_input;
    std::string m_name;
    std::string m_extension;
    const fs::path& m_directory;
    const std::stop_token& m_stop;
};

} // namespace

std::optional<fs::path> extract(const fs::path& url, const std::stop_token& stop) {
    if (!RegularFile::open(url)) {
        return std::nullopt;
    }
    fs::path directory = TempRegistry::freshPath("");
    if (::mkdir(directory.c_str(), S_IRWXU) != 0) {
        return std::nullopt;
    }
    if (!Extraction(url, directory, stop).succeeds() || stop.stop_requested()) {
        removeTree(directory);
        return std::nullopt;
    }
    grantOwnerBelow(directory);
    return directory;
}

} // namespace velmora::Collector
