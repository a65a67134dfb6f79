#include "app/panels/Places.h"

#include "app/desktop/FileUrls.h"
#include "ui/kit/ShownName.h"

#include <QFile>
#include <QStandardPaths>
#include <QXmlStreamReader>

#include <algorithm>
#include <array>
#include <iterator>
#include <set>
#include <utility>

namespace velmora {

namespace {

namespace fs = std::filesystem;

constexpr auto bookmarksGroup = "BOOKMARKS";

fs::path bytesOf(const QString& path) {
    return {QFile::encodeName(path).toStdString()};
}

Place placeOf(const fs::path& folder, const char* group, const QString& title = {}) {
    const std::string name = folder.filename().native();
    return {title.isEmpty() ? shownName(name.empty() ? "/" : name) : title, QString::fromLatin1(group),
            folder};
}

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

std::vector<Place> userFolders() {
    constexpr auto group = "PLACES";
    const fs::path home = bytesOf(QStandardPaths::writableLocation(QStandardPaths::HomeLocation));
    std::vector<Place> places = {placeOf(home, group, QStringLiteral("Home"))};
    for (const auto location : {QStandardPaths::MusicLocation, QStandardPaths::DownloadLocation,
                                QStandardPaths::DesktopLocation, QStandardPaths::DocumentsLocation,
                                QStandardPaths::MoviesLocation, QStandardPaths::PicturesLocation}) {
        places.push_back(placeOf(bytesOf(QStandardPaths::writableLocation(location)), group));
    }
    places.push_back(placeOf("/", group, QStringLiteral("Computer")));
    return places;
}

/// A path of mountinfo, in which blanks, tabs, line feeds and backslashes are written as "\040".
QByteArray unescaped(const QByteArray& text) {
    QByteArray plain;
    for (qsizetype i = 0; i < text.size(); ++i) {
        bool isOctal = false;
        const int value = text[i] == '\\' ? text.mid(i + 1, 3).toInt(&isOctal, 8) : 0;
        plain.append(isOctal ? static_cast<char>(value) : text[i]);
        i += isOctal ? 3 : 0;
    }
    return plain;
}

} // namespace

std::vector<Place> gtkBookmarks(const QByteArray& text) {
    std::vector<Place> places;
    for (const QByteArray& line : text.split('\n')) {
        const qsizetype blank = line.indexOf(' ');
        if (const auto folder = pathOfUrl(line.first(blank < 0 ? line.size() : blank))) {
            places.push_back(placeOf(*folder, bookmarksGroup,
                                     blank < 0 ? QString() : QString::fromUtf8(line.sliced(blank + 1))));
        }
    }
    return places;
}

std::vector<Place> kdeBookmarks(const QByteArray& xbel) {
    std::vector<Place> places;
    QXmlStreamReader xml(xbel);
    std::optional<fs::path> folder;
    QString title;
    bool isLeftOut = false;
    while (!xml.atEnd()) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (token == QXmlStreamReader::StartElement && xml.name() == u"bookmark") {
            folder = pathOfUrl(xml.attributes().value(QStringLiteral("href")).toUtf8());
            title.clear();
            isLeftOut = false;
        } else if (token == QXmlStreamReader::StartElement && xml.name() == u"title") {
            title = xml.readElementText();
        } else if (token == QXmlStreamReader::StartElement &&
                   (xml.name() == u"IsHidden" || xml.name() == u"isSystemItem")) {
            isLeftOut = isLeftOut || xml.readElementText() == u"true";
        } else if (token == QXmlStreamReader::EndElement && xml.name() == u"bookmark" && folder &&
                   !isLeftOut) {
            places.push_back(placeOf(*folder, bookmarksGroup, title));
        }
    }
    return places;
}

std::vector<Place> volumes(const QByteArray& mountInfo) {
    constexpr std::array roots = {"/media/", "/run/media/", "/mnt/"};
    constexpr qsizetype mountPoint = 4; // the fifth word of a line
    std::vector<Place> places;
    for (const QByteArray& line : mountInfo.split('\n')) {
        const QList<QByteArray> words = line.split(' ');
        const QByteArray path = words.size() > mountPoint ? unescaped(words[mountPoint]) : QByteArray();
        if (std::ranges::any_of(roots, [&](const char* root) { return (path + '/').startsWith(root); })) {
            places.push_back(placeOf(path.toStdString(), "VOLUMES"));
        }
    }
    return places;
}

std::vector<Place> presentPlaces(const Paths& usedLast) {
    const QString config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    std::vector<Place> recent;
    std::ranges::transform(usedLast, std::back_inserter(recent),
                           [](const fs::path& folder) { return placeOf(folder, "USED LAST"); });
    std::vector<Place> places;
    std::set<fs::path> known;
    for (const std::vector<Place>& group :
         {userFolders(), gtkBookmarks(contentOf(config + QStringLiteral("/gtk-3.0/bookmarks"))),
          kdeBookmarks(contentOf(data + QStringLiteral("/user-places.xbel"))),
          volumes(contentOf(QStringLiteral("/proc/self/mountinfo"))), recent}) {
        for (const Place& place : group) {
            std::error_code error;
            if (fs::is_directory(place.folder, error) && known.insert(place.folder).second) {
                places.push_back(place);
            }
        }
    }
    return places;
}

} // namespace velmora
