#pragma once

// Shows a file in the file manager.

#include <QByteArray>

#include <filesystem>
#include <functional>

namespace velmora {

/// Opens the file manager with `file` selected. Without a file manager on the session bus, the desktop's
/// portal shows the file's folder; without a portal, xdg-open opens the folder like any other document.
/// Returns at once. `failed` is called later, on the main thread, when none of the three could be had: a
/// service counts as absent after 5 seconds, xdg-open has failed when it says so. With `activationToken` the
/// file manager may take the focus, where the desktop asks for one.
void revealFile(const std::filesystem::path& file, std::function<void()> failed,
                const QByteArray& activationToken = {});

} // namespace velmora
