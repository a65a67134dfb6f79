#pragma once

// What the window asks with its file panel.

#include "system/Paths.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace velmora {

class Alerts;
class FilePanel;

/// Where to save a zip archive, and under which name.
struct ZipProposal {
    std::string name;
    std::optional<std::filesystem::path> folder;
    int fileCount = 0;
};

/// Main thread. Every question returns at once; what was cancelled has no answer.
class Panels {
public:
    /// Both outlive this.
    Panels(FilePanel& panel, Alerts& alerts);

    /// Asks for folders and files to measure, any number of both.
    void chooseSources(std::function<void(const Paths&)> chosen);

    /// What speaks against a destination, in words; nothing as a rule.
    using Objection = std::function<std::optional<std::string>(const std::filesystem::path&)>;

    /// Asks where to save the archive, and before replacing one.
    void chooseZip(const ZipProposal& proposal, const Objection& objection,
                   const std::function<void(const std::filesystem::path&)>& chosen);

    /// Takes back what is being asked.
    void close();

private:
    void zipAt(const std::filesystem::path& destination, const Objection& objection,
               const std::function<void(const std::filesystem::path&)>& chosen);

    FilePanel& m_panel;
    Alerts& m_alerts;
};

} // namespace velmora
