#pragma once

// What the window asks with its file panel, or with the desktop's own dialog.

#include "app/panels/PortalSave.h"
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

    /// The window over which the desktop shows its dialogs; none until it exists.
    void setWindow(const QWindow* window) { m_window = window; }

    /// Asks for folders and files to measure, any number of both. A panel that asks for them already stays as
    /// it is.
    void chooseSources(std::function<void(const Paths&)> chosen);

    /// What speaks against a destination, in words; nothing as a rule.
    using Objection = std::function<std::optional<std::string>(const std::filesystem::path&)>;

    /// Asks where to save the archive, and before replacing one: with the dialog of the desktop's portal, or
    /// with the panel where there is none.
    void chooseZip(const ZipProposal& proposal, const Objection& objection,
                   const std::function<void(const std::filesystem::path&)>& chosen);

    /// Takes back what is being asked.
    void close();

private:
    void chooseZipInPanel(const ZipProposal& proposal, const Objection& objection,
                          const std::function<void(const std::filesystem::path&)>& chosen);
    void zipAt(const std::filesystem::path& destination, const Objection& objection,
               const std::function<void(const std::filesystem::path&)>& chosen);
    void askToReplace(const std::filesystem::path& destination, std::function<void()> replace);

    FilePanel& m_panel;
    Alerts& m_alerts;
    PortalSave m_portal;
    const QWindow* m_window = nullptr;
};

} // namespace velmora
