// What the panel does with what the user confirms: looks whether it is there, and hands it over.

#include "records/Reasons.h"
#include "system/UnicodeCase.h"
#include "ui/kit/ShownName.h"
#include "ui/panel/FilePanel.h"
#include "ui/panel/TypedPaths.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <iterator>

namespace velmora {

namespace {

namespace fs = std::filesystem;

/// What a look at a path tells.
struct Seen {
    int error = 0; ///< a value of errno; 0: something is there
    bool isFolder = false;
};

Seen look(const fs::path& path) {
    struct stat status {};

    if (::stat(path.c_str(), &status) != 0) {
        return {.error = errno};
    }
    return {.isFolder = S_ISDIR(status.st_mode)};
}

} // namespace

bool FilePanel::acceptable() const {
    if (saving()) {
        return !m_name.trimmed().isEmpty();
    }
    return m_typing ? !m_typed.trimmed().isEmpty() : m_files.selectedCount() > 0;
}

void FilePanel::accept() {
    if (!m_open || !acceptable()) {
        return;
    }
    if (saving()) {
        lookUpDestination();
    } else if (m_typing) {
        lookUp(typedPaths(m_typed, m_folder), false);
    } else {
        Paths paths;
        std::ranges::transform(m_files.selected(), std::back_inserter(paths),
                               [this](const std::string& name) { return m_folder / name; });
        choose(paths);
    }
}

void FilePanel::activate() {
    const int row = m_files.current();
    const std::vector<std::string> selected = m_files.selected();
    const bool isFolder = row >= 0 && m_files.file(row).kind == ListedKind::folder;
    if (isFolder && selected.size() == 1 && selected.front() == m_files.file(row).name) {
        goTo(m_folder / selected.front());
    } else {
        accept();
    }
}

void FilePanel::submit() {
    if (!m_typed.trimmed().isEmpty()) {
        lookUp(typedPaths(m_typed, m_folder), true);
    }
}

void FilePanel::makeFolder(const QString& name) {
    if (name.trimmed().isEmpty()) {
        return;
    }
    m_looker.run([this, path = m_folder / name.toStdString()]() -> Aside::Answer {
        const int error = ::mkdir(path.c_str(), 0777) == 0 ? 0 : errno;
        return [this, path, error] {
            if (error == 0) {
                goTo(path);
            } else {
                complainOf(path, error);
            }
        };
    });
}

QString FilePanel::wordsOf(int error) {
    switch (error) {
    case EEXIST:
        return QStringLiteral("already there");
    case ENOTDIR:
        return QStringLiteral("not a folder");
    default:
        return QString::fromStdString(std::string(wordsFor(reasonOfOpening(error))));
    }
}

void FilePanel::complainOf(const fs::path& path, int error) {
    const bool isHere = path.parent_path() == m_folder;
    complain(QStringLiteral("“%1”: %2")
                 .arg(shownName((isHere ? path.filename() : path).native()), wordsOf(error)));
}

void FilePanel::choose(const Paths& paths) {
    if (const auto chosen = m_request.chosen) { // a copy: it may close the panel, which forgets its own
        chosen(paths);
    }
}

void FilePanel::lookUp(const Paths& paths, bool opensFolder) {
    m_looker.run([this, paths, opensFolder]() -> Aside::Answer {
        std::vector<Seen> seen;
        std::ranges::transform(paths, std::back_inserter(seen), &look);
        return [this, paths, opensFolder, seen] {
            const auto missing = std::ranges::find_if(seen, [](const Seen& one) { return one.error != 0; });
            if (missing != seen.end()) {
                complainOf(paths[static_cast<std::size_t>(missing - seen.begin())], missing->error);
            } else if (opensFolder && seen.size() == 1 && seen.front().isFolder) {
                goTo(paths.front());
            } else {
                choose(paths);
            }
        };
    });
}

void FilePanel::lookUpDestination() {
    const bool isText = m_name.toStdString() == m_nameBytes;
    const fs::path typed = isText ? typedPath(m_name, m_folder) : m_folder / m_nameBytes;
    fs::path destination = typed;
    if (!lowerCased(typed.native()).ends_with(m_request.ending)) {
        destination += m_request.ending;
    }
    m_looker.run([this, typed, destination]() -> Aside::Answer {
        return [this, typed, destination, isFolder = look(typed).isFolder,
                parent = look(destination.parent_path())] {
            if (isFolder) {
                goTo(typed);
            } else if (parent.error != 0 || !parent.isFolder) {
                complainOf(destination.parent_path(), parent.error == 0 ? ENOTDIR : parent.error);
            } else {
                choose({destination});
            }
        };
    });
}

} // namespace velmora
