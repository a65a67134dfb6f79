#include "ui/panel/FileList.h"

#include "records/DisplayFormat.h"
#include "ui/kit/ShownName.h"

#include <QDateTime>
#include <QLocale>

#include <algorithm>
#include <utility>

namespace velmora {

namespace {

QString shownSize(const ListedFile& file) {
    const bool known = file.kind != ListedKind::folder && file.bytes >= 0;
    return known ? QString::fromStdString(prettyBytes(file.bytes)) : QString();
}

QString shownDate(const ListedFile& file) {
    return file.modified == 0
               ? QString()
               : QLocale().toString(QDateTime::fromSecsSinceEpoch(file.modified), QLocale::ShortFormat);
}

} // namespace

void FileList::show(std::vector<ListedFile> files, const std::string& current) {
    m_files = std::move(files);
    m_selected.assign(m_files.size(), false);
    arrangeAround(current);
}

void FileList::addDetails(std::vector<ListedFile> files) {
    m_files = std::move(files);
    if (m_column != Name) {
        arrange();
    } else if (count() > 0) {
        emit dataChanged(index(0), index(count() - 1), {SizeRole, DateRole});
    }
}

std::vector<std::string> FileList::selected() const {
    std::vector<std::string> names;
    for (const std::size_t index : m_rows) {
        if (m_selected[index]) {
            names.push_back(m_files[index].name);
        }
    }
    return names;
}

void FileList::setAll(bool all) {
    m_all = all;
    arrange();
}

void FileList::setHiddenToo(bool hiddenToo) {
    m_hiddenToo = hiddenToo;
    arrange();
}

int FileList::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant FileList::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    const ListedFile& listed = file(index.row());
    switch (role) {
    case NameRole:
        return shownName(listed.name);
    case KindRole:
        return static_cast<int>(listed.kind);
    case SizeRole:
        return shownSize(listed);
    case DateRole:
        return shownDate(listed);
    case SelectedRole:
        return static_cast<bool>(m_selected[m_rows[static_cast<std::size_t>(index.row())]]);
    default:
        return {};
    }
}

QHash<int, QByteArray> FileList::roleNames() const {
    return {{NameRole, "name"},
            {KindRole, "kind"},
            {SizeRole, "size"},
            {DateRole, "date"},
            {SelectedRole, "selected"}};
}

void FileList::sortBy(Column column) {
    m_descending = column == m_column && !m_descending;
    m_column = column;
    arrange();
}

void FileList::choose(int row) {
    std::fill(m_selected.begin(), m_selected.end(), false);
    m_anchor = nearest(row);
    select(m_anchor, m_anchor);
}

void FileList::toggle(int row) {
    m_anchor = nearest(row);
    if (m_anchor >= 0) {
        m_selected[m_rows[static_cast<std::size_t>(m_anchor)]].flip();
        setCurrent(m_anchor);
        announceSelection();
    }
}

void FileList::extendTo(int row) {
    std::fill(m_selected.begin(), m_selected.end(), false);
    select(m_anchor, nearest(row));
}

void FileList::moveTo(int row) {
    m_anchor = nearest(row);
    setCurrent(m_anchor);
}

void FileList::selectAll() {
    for (const std::size_t index : m_rows) {
        m_selected[index] = true;
    }
    announceSelection();
}

void FileList::selectNone() {
    std::fill(m_selected.begin(), m_selected.end(), false);
    announceSelection();
}

int FileList::find(const QString& letters, int first) const {
    for (int i = 0; i < count(); ++i) {
        const int row = (first + i) % count();
        if (shownName(file(row).name).startsWith(letters, Qt::CaseInsensitive)) {
            return row;
        }
    }
    return -1;
}

bool FileList::isShown(const ListedFile& file) const {
    return (m_all || file.kind != ListedKind::other) && (m_hiddenToo || !file.hidden());
}

void FileList::arrange() {
    arrangeAround(m_current < 0 ? std::string() : std::string(file(m_current).name));
}

void FileList::arrangeAround(const std::string& current) {
    beginResetModel();
    m_rows.clear();
    for (std::size_t i = 0; i < m_files.size(); ++i) {
        if (isShown(m_files[i])) {
            m_rows.push_back(i);
        } else {
            m_selected[i] = false;
        }
    }
    const auto value = [this](std::size_t index) {
        return m_column == Size ? m_files[index].bytes : m_files[index].modified;
    };
    std::ranges::stable_sort(m_rows, [&](std::size_t a, std::size_t b) {
        const bool isFolder = m_files[a].kind == ListedKind::folder;
        if (isFolder != (m_files[b].kind == ListedKind::folder)) {
            return isFolder;
        }
        const auto [low, high] = m_descending ? std::pair(b, a) : std::pair(a, b);
        return m_column == Name ? low < high : value(low) < value(high);
    });
    endResetModel();
    const auto found =
        std::ranges::find(m_rows, current, [this](std::size_t index) { return m_files[index].name; });
    m_current = found != m_rows.end() ? static_cast<int>(found - m_rows.begin()) : std::min(count() - 1, 0);
    m_anchor = std::max(m_current, 0);
    emit arranged();
    emit currentChanged();
    announceSelection();
}

void FileList::setCurrent(int row) {
    if (row != m_current) {
        m_current = row;
        emit currentChanged();
    }
}

/// Selects the rows between the two as well; `last` becomes the current one.
void FileList::select(int first, int last) {
    if (count() == 0) {
        return;
    }
    for (int row = std::min(first, last); row <= std::max(first, last); ++row) {
        m_selected[m_rows[static_cast<std::size_t>(row)]] = true;
    }
    setCurrent(last);
    announceSelection();
}

void FileList::announceSelection() {
    m_selectedCount = static_cast<int>(std::ranges::count(m_selected, true));
    if (count() > 0) {
        emit dataChanged(index(0), index(count() - 1), {SelectedRole});
    }
    emit selectionChanged();
}

/// `row`, or the first or last where there is no such row; -1 where there is none at all.
int FileList::nearest(int row) const {
    return count() == 0 ? -1 : std::clamp(row, 0, count() - 1);
}

} // namespace velmora
