#include "ui/panel/TypedPaths.h"

#include "ui/kit/ShownName.h"

#include <QStringList>

#include <cstdlib>

namespace velmora {

namespace {

namespace fs = std::filesystem;

std::string homeFolder() {
    const char* home = std::getenv("HOME");
    return home == nullptr ? "/" : home;
}

bool beginsAPath(const QString& text) {
    return text.isEmpty() || text.startsWith('/');
}

} // namespace

fs::path typedPath(const QString& text, const fs::path& folder) {
    if (text.startsWith('~') && beginsAPath(text.sliced(1))) {
        return {homeFolder() + text.sliced(1).toStdString()};
    }
    const QString shown = shownPath(folder);
    if (text.startsWith(shown) && (shown.endsWith('/') || beginsAPath(text.sliced(shown.size())))) {
        return {folder.native() + text.sliced(shown.size()).toStdString()};
    }
    return folder / text.toStdString();
}

Paths typedPaths(const QString& text, const fs::path& folder) {
    const QString trimmed = text.trimmed();
    if (trimmed.size() < 2 || !trimmed.startsWith('"') || !trimmed.endsWith('"')) {
        return {typedPath(trimmed, folder)};
    }
    Paths paths;
    const QStringList parts = trimmed.split('"');
    for (qsizetype i = 1; i < parts.size(); i += 2) { // what stands between an opening and a closing mark
        if (!parts[i].isEmpty()) {
            paths.push_back(typedPath(parts[i], folder));
        }
    }
    return paths;
}

QString shownPath(const fs::path& path) {
    return shownName(path.native());
}

} // namespace velmora
