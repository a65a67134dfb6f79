#pragma once

// The files of one folder as a view lists them: filtered, sorted, some of them selected. Rows are what is
// shown; names stay bytes.

#include "ui/panel/FolderContents.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include <cstddef>
#include <string>
#include <vector>

namespace velmora {

/// Folders come first. One row is the current one, if there is any: that at which the keyboard is.
class FileList : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The panel provides its list.")
    Q_PROPERTY(int count READ count NOTIFY arranged)
    Q_PROPERTY(int current READ current NOTIFY currentChanged)
    Q_PROPERTY(int selectedCount READ selectedCount NOTIFY selectionChanged)
    Q_PROPERTY(bool all READ all WRITE setAll NOTIFY arranged)
    Q_PROPERTY(bool hiddenToo READ hiddenToo WRITE setHiddenToo NOTIFY arranged)
    Q_PROPERTY(Column column READ column NOTIFY arranged)
    Q_PROPERTY(bool descending READ descending NOTIFY arranged)

public:
    enum Column : int { Name, Size, Date };
    Q_ENUM(Column)

    enum Role : int { NameRole = Qt::UserRole, KindRole, SizeRole, DateRole, SelectedRole };

    using QAbstractListModel::QAbstractListModel;

    /// Lists `files` instead, none of them selected; the current row is that of `current`, else the first.
    void show(std::vector<ListedFile> files, const std::string& current = {});

    /// The same files with sizes and times, which were not known before. Rows stay unless they are sorted by
    /// them.
    void addDetails(std::vector<ListedFile> files);

    const ListedFile& file(int row) const { return m_files[m_rows[static_cast<std::size_t>(row)]]; }

    /// The names of what is selected, in the order of the rows.
    std::vector<std::string> selected() const;

    int count() const { return static_cast<int>(m_rows.size()); }

    int current() const { return m_current; }

    int selectedCount() const { return m_selectedCount; }

    bool all() const { return m_all; }

    void setAll(bool all); ///< files that are neither audio nor archives, too

    bool hiddenToo() const { return m_hiddenToo; }

    void setHiddenToo(bool hiddenToo);

    Column column() const { return m_column; }

    bool descending() const { return m_descending; }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

public slots:
    void sortBy(velmora::FileList::Column column); ///< the other way round if it is sorted by it already
    void choose(int row);                          ///< it alone is selected, and current
    void toggle(int row);                          ///< and makes it current
    void extendTo(int row);                        ///< selects from where the selection began to `row`
    void moveTo(int row);                          ///< makes it current and leaves the selection
    void selectAll();
    void selectNone();

    /// The next row, from `first` on and round, whose name begins with `letters`, in whatever case; -1 if
    /// there is none.
    int find(const QString& letters, int first) const;

signals:
    void arranged(); ///< rows, filter or order have changed
    void currentChanged();
    void selectionChanged();

private:
    bool isShown(const ListedFile& file) const;
    void arrange();
    void arrangeAround(const std::string& current);
    void setCurrent(int row);
    void select(int first, int last);
    void announceSelection();
    int nearest(int row) const;

    std::vector<ListedFile> m_files; ///< in natural order
    std::vector<std::size_t> m_rows; ///< the files that are shown
    std::vector<bool> m_selected;    ///< by file
    int m_selectedCount = 0;
    int m_current = -1;
    int m_anchor = 0; ///< the row at which the selection began
    Column m_column = Name;
    bool m_descending = false;
    bool m_all = false;
    bool m_hiddenToo = false;
};

} // namespace velmora
