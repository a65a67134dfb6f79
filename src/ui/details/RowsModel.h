#pragma once

// One list of the details as a view shows it: searched, sorted, selected. All work whose cost grows with the
// list is done in a thread of its own, while what was shown stays; only what follows from a key press is done
// at once.

#include "ui/details/RowOrder.h"
#include "ui/details/Rows.h"

#include <QAbstractListModel>
#include <QByteArray>
#include <QThreadPool>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include <functional>
#include <memory>
#include <stop_token>
#include <vector>

namespace velmora {

class RowsModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The details have their lists.")

    Q_PROPERTY(QVariantList columns READ columns NOTIFY rowsChanged)
    Q_PROPERTY(int total READ total NOTIFY rowsChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    Q_PROPERTY(QString countText READ countText NOTIFY selectionChanged)
    Q_PROPERTY(int sortColumn READ sortColumn NOTIFY orderChanged)
    Q_PROPERTY(bool descending READ descending NOTIFY orderChanged)
    Q_PROPERTY(QString search READ search WRITE setSearch NOTIFY orderChanged)
    Q_PROPERTY(int selectedCount READ selectedCount NOTIFY selectionChanged)
    Q_PROPERTY(int current READ current NOTIFY selectionChanged)

public:
    enum Role : std::uint16_t {
        cellsRole = Qt::UserRole, ///< a text for each column
        selectedRole,
        currentRole, ///< whether it is the one that keys move from
        missingRole,
        depthRole, ///< 0 unless the list stands in the order of the scan, whole
    };

    explicit RowsModel(QObject* parent = nullptr);

    /// Ends what goes on for it first.
    ~RowsModel() override;

    /// Shows the list that `maker` makes, in the order of the scan, nothing selected; an empty one without a
    /// maker.
    void show(std::function<std::unique_ptr<const Rows>()> maker);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// Of each column `title`, `share` of the width, `isNumber`.
    QVariantList columns() const;

    int total() const { return m_rows ? static_cast<int>(m_rows->size()) : 0; } ///< those not shown included

    int count() const { return static_cast<int>(m_shown.size()); }

    /// "12 OF 214  ·  3 SELECTED"
    QString countText() const;

    int sortColumn() const { return m_order.column; }

    bool descending() const { return m_order.descending; }

    QString search() const { return QString::fromStdString(m_order.search); }

    void setSearch(const QString& search);

    int selectedCount() const { return m_selectedCount; }

    int current() const { return m_current; } ///< -1: none

public slots:
    /// Sorts by `column`; by the same one the other way round, the third time in the order of the scan.
    void sortBy(int column);

    /// Selects `row` alone and makes it the current one.
    void select(int row);

    /// Selects from where the last plain selection was made to `row`.
    void extendTo(int row);

    /// Selects `row` besides what is selected, or no longer.
    void toggle(int row);

    void selectAll();

    /// The path that the file manager can show of `row`, in bytes; empty where there is no such row.
    QByteArray placeOf(int row) const;

    /// Makes a text of the selected rows that are shown, or of all where none is selected, a line each:
    /// "00:03:48", a tab, the path. Line feeds, tabs and backslashes in a path are written as two characters;
    /// other bytes as they are. `copied` comes at once where the rows are few, later where they are many.
    void copy();

signals:
    void copied(const QByteArray& text);
    void rowsChanged();
    void countChanged();
    void orderChanged();
    void selectionChanged();

    /// The list stands in another order: what was looked at is elsewhere.
    void rearranged();

private:
    void arrange();
    void take(std::shared_ptr<const Rows> rows, RowNumbers shown);
    void selectNothing();
    void setSelected(int row, bool selected);
    void announceSelection();

    /// The rows that are copied, by number.
    RowNumbers chosen() const;

    bool isRow(int row) const { return row >= 0 && row < count(); }

    std::function<std::unique_ptr<const Rows>()> m_maker;
    std::shared_ptr<const Rows> m_rows; ///< null until made
    RowNumbers m_shown;
    RowOrder m_order;
    std::vector<bool> m_selected; ///< by number; empty while nothing is
    int m_selectedCount = 0;
    int m_current = -1;
    int m_anchor = -1;           ///< where the last plain selection was made
    std::stop_source m_obsolete; ///< of the rows' arrangement under way
    std::stop_source m_ends;     ///< of all work, when the model goes
    QThreadPool m_thread;        ///< of one thread
};

} // namespace velmora
