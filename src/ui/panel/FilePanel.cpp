#include "ui/panel/FilePanel.h"

#include "system/FileName.h"
#include "ui/kit/ShownName.h"
#include "ui/panel/TypedPaths.h"

#include <QVariantMap>

#include <iterator>
#include <utility>

namespace velmora {

namespace {

namespace fs = std::filesystem;

/// `path` without "." and ".." and without a slash at its end. Links are not followed.
fs::path tidy(const fs::path& path) {
    return {standardized(path)};
}

} // namespace

FilePanel::FilePanel(ReadFolder read, QObject* parent)
    : QObject(parent)
    , m_read(read)
    , m_completion(std::move(read)) {
    connect(&m_files, &FileList::selectionChanged, this, &FilePanel::followSelection);
    connect(&m_files, &FileList::arranged, this, &FilePanel::noticeChanged);
    connect(&m_completion, &PathCompletion::changed, this, &FilePanel::proposalsChanged);
    for (const auto change : {&FilePanel::typedChanged, &FilePanel::nameChanged, &FilePanel::openChanged}) {
        connect(this, change, this, &FilePanel::acceptableChanged);
    }
}

void FilePanel::ask(PanelRequest request) {
    close();
    m_request = std::move(request);
    m_nameBytes = m_request.name.value_or("");
    m_name = shownName(m_nameBytes);
    m_open = true;
    open(m_request.folders);
    readPlaces();
    emit nameChanged();
    emit openChanged();
}

void FilePanel::close() {
    if (!m_open) {
        return;
    }
    m_open = false;
    for (Aside* aside : {&m_reader, &m_detailReader, &m_looker, &m_placeReader}) {
        aside->forget();
    }
    m_request.chosen = {}; // the texts stay until the panel has disappeared
    m_before.clear();
    m_files.show({});
    setTyping(false);
    emit openChanged();
}

void FilePanel::readPlaces() {
    m_placeReader.run([this, read = m_request.places]() -> Aside::Answer {
        return [this, places = read ? read() : std::vector<Place>()] {
            m_places = places;
            emit placesChanged();
        };
    });
}

QVariantList FilePanel::places() const {
    QVariantList list;
    for (const Place& place : m_places) {
        list.append(QVariantMap{
            {"title", place.title}, {"group", place.group}, {"here", tidy(place.folder) == m_folder}});
    }
    return list;
}

QStringList FilePanel::crumbs() const {
    QStringList names;
    for (const fs::path& part : m_folder) {
        names.append(shownName(part.native()));
    }
    return names;
}

QString FilePanel::folderText() const {
    return shownPath(m_folder);
}

QString FilePanel::notice() const {
    if (!m_failure.isEmpty()) {
        return m_failure;
    }
    if (reading() || m_files.count() > 0) {
        return {};
    }
    return m_files.all() ? QStringLiteral("Nothing here")
                         : QStringLiteral("No folders, archives or audio files here");
}

void FilePanel::setTyping(bool typing) {
    if (typing == m_typing) {
        return;
    }
    m_typing = typing;
    m_typed.clear();
    m_completion.follow({}, m_folder);
    complain({});
    emit typedChanged();
}

void FilePanel::setTyped(const QString& typed) {
    if (typed == m_typed) {
        return;
    }
    m_typed = typed;
    m_completion.follow(typed, m_folder);
    complain({});
    emit typedChanged();
}

void FilePanel::setName(const QString& name) {
    if (name == m_name) {
        return;
    }
    m_name = name;
    m_nameBytes = name.toStdString();
    complain({});
    emit nameChanged();
}

void FilePanel::goUp() {
    if (m_folder.has_relative_path()) {
        goTo(m_folder.parent_path(), m_folder.filename());
    }
}

void FilePanel::goBack() {
    if (!m_before.empty()) {
        const fs::path folder = std::move(m_before.back());
        m_before.pop_back();
        open({folder});
    }
}

void FilePanel::openCrumb(int index) {
    const auto count = std::distance(m_folder.begin(), m_folder.end());
    fs::path folder;
    for (auto part = m_folder.begin(); part != m_folder.end() && index >= 0; ++part, --index) {
        folder /= *part;
    }
    const auto depth = std::distance(folder.begin(), folder.end());
    goTo(folder, depth < count ? std::next(m_folder.begin(), depth)->native() : std::string());
}

void FilePanel::openPlace(int index) {
    goTo(m_places[static_cast<std::size_t>(index)].folder);
}

void FilePanel::open(const Paths& folders, const std::string& current) {
    m_folder = folders.empty() ? fs::path("/") : tidy(folders.front());
    m_failure.clear();
    m_files.show({});
    setTyping(false);
    complain({});
    m_looker.forget();
    m_detailReader.forget();
    m_reader.run([this, read = m_read, folders, current]() -> Aside::Answer {
        FolderContents contents{.folder = "/"};
        for (const fs::path& folder : folders) {
            contents = read(tidy(folder));
            if (contents.error == 0) {
                break;
            }
        }
        return [this, contents = std::move(contents), current] { show(contents, current); };
    });
    emit folderChanged();
    emit placesChanged();
    emit noticeChanged();
}

void FilePanel::goTo(const fs::path& folder, const std::string& current) {
    m_before.push_back(m_folder);
    open({folder}, current);
}

void FilePanel::show(const FolderContents& contents, const std::string& current) {
    m_folder = contents.folder;
    if (contents.error != 0) {
        m_failure = wordsOf(contents.error);
    }
    m_files.show(contents.files, current);
    readDetails(contents);
    emit folderChanged();
    emit placesChanged();
    emit noticeChanged();
}

void FilePanel::readDetails(const FolderContents& contents) {
    m_detailReader.run([this, contents = contents]() mutable -> Aside::Answer {
        lookAtFiles(contents);
        return [this, files = std::move(contents.files)] { m_files.addDetails(files); };
    });
}

void FilePanel::complain(const QString& complaint) {
    if (complaint != m_complaint) {
        m_complaint = complaint;
        emit complaintChanged();
    }
}

void FilePanel::followSelection() {
    const int count = m_files.selectedCount();
    if (saving() && count == 1 && m_files.file(m_files.current()).kind != ListedKind::folder) {
        const std::string name = m_files.selected().front();
        setName(shownName(name));
        m_nameBytes = name;
    }
    if (count > 0) {
        setTyping(false);
    }
    emit acceptableChanged();
}

} // namespace velmora
