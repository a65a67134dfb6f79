#include "app/panels/RecentFolders.h"

#include "app/desktop/FileUrls.h"

#include <QSettings>
#include <QStringList>

#include <algorithm>

namespace velmora {

namespace {

constexpr std::size_t maxRecentFolders = 5;

QString recentKey() {
    return QStringLiteral("panel/folders");
}

} // namespace

Paths recentFolders() {
    Paths folders;
    for (const QString& url : QSettings().value(recentKey()).toStringList()) {
        if (const auto folder = pathOfUrl(url.toUtf8()); folder && folders.size() < maxRecentFolders) {
            folders.push_back(*folder);
        }
    }
    return folders;
}

void rememberFolder(const std::filesystem::path& folder) {
    Paths folders = recentFolders();
    std::erase(folders, folder);
    folders.insert(folders.begin(), folder);
    QStringList urls; // URLs are text, whatever bytes a path holds
    for (std::size_t i = 0; i < std::min(folders.size(), maxRecentFolders); ++i) {
        urls.append(QString::fromUtf8(urlOfPath(folders[i])));
    }
    QSettings().setValue(recentKey(), urls);
}

} // namespace velmora
