#include "ui/details/RowsModel.h"

#include "system/Names.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

namespace velmora {

namespace {

/// A text of so many rows is made at once.
constexpr std::size_t fewRows = 2'000;

/// A line for each row. Ends early when `stop` is requested.
QByteArray textOf(const Rows* rows, const RowNumbers& numbers, const std::stop_token& stop) {
    QByteArray text;
    for (const std::uint32_t number : numbers) {
        if (stop.stop_requested()) {
            break;
        }
        const std::string line = rows->lead(number) + '\t' + fieldName(rows->name(number));
        text += (text.isEmpty() ? "" : "\n");
        text.append(line.data(), static_cast<qsizetype>(line.size()));
    }
    return text;
}

} // namespace

RowsModel::RowsModel(QObject* parent)
    : QAbstractListModel(parent) {
    m_thread.setMaxThreadCount(1);
}

RowsModel::~RowsModel() {
    m_obsolete.request_stop();
    m_ends.request_stop();
    m_thread.waitForDone();
}

void RowsModel::show(std::function<std::unique_ptr<const Rows>()> maker) {
    m_obsolete.request_stop();
    beginResetModel();
    m_maker = std::move(maker);
    m_rows.reset();
    m_shown = {};
    m_order = {};
    selectNothing();
    m_current = -1;
    m_anchor = -1;
    endResetModel();
    emit rowsChanged();
    emit countChanged();
    emit orderChanged();
    emit selectionChanged();
    if (m_maker) {
        arrange();
    }
}

/// Asks for the rows in the order that is wanted now. The answer to an earlier question is dropped.
void RowsModel::arrange() {
    m_obsolete.request_stop();
    m_obsolete = std::stop_source();
    m_thread.start([this, maker = m_maker, known = m_rows, order = m_order, stop = m_obsolete.get_token()] {
        if (stop.stop_requested()) {
            return;
        }
        const std::shared_ptr<const Rows> rows = known ? known : std::shared_ptr<const Rows>(maker());
        std::optional<RowNumbers> shown = ordered(*rows, order, stop);
        if (shown) {
            auto answer = [this, rows, stop, shown = std::move(*shown)]() mutable {
                if (!stop.stop_requested()) {
                    take(rows, std::move(shown));
                }
            };
            QMetaObject::invokeMethod(this, std::move(answer), Qt::QueuedConnection);
        }
    });
}

void RowsModel::take(std::shared_ptr<const Rows> rows, RowNumbers shown) {
    const bool isNew = !m_rows;
    const int before = count();
    const int after = static_cast<int>(shown.size());
    m_rows = std::move(rows);
    // What stands at a row changes; rows come and go at the end alone. So a view keeps what it has made.
    if (after < before) {
        beginRemoveRows({}, after, before - 1);
        m_shown = std::move(shown);
        endRemoveRows();
    } else if (after > before) {
        beginInsertRows({}, before, after - 1);
        m_shown = std::move(shown);
        endInsertRows();
    } else {
        m_shown = std::move(shown);
    }
    m_current = after > 0 ? 0 : -1;
    m_anchor = m_current;
    if (std::min(before, after) > 0) {
        emit dataChanged(index(0), index(std::min(before, after) - 1));
    }
    if (isNew) {
        emit rowsChanged();
    }
    emit countChanged();
    emit selectionChanged();
    emit rearranged();
}

int RowsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant RowsModel::data(const QModelIndex& index, int role) const {
    if (!isRow(index.row())) {
        return {};
    }
    const std::uint32_t number = m_shown[static_cast<std::size_t>(index.row())];
    switch (role) {
    case cellsRole: {
        QStringList cells;
        for (std::size_t column = 0; column < m_rows->columns().size(); ++column) {
            cells << m_rows->cell(number, column);
        }
        return cells;
    }
    case selectedRole:
        return !m_selected.empty() && m_selected[number];
    case currentRole:
        return index.row() == m_current;
    case missingRole:
        return m_rows->isMissing(number);
    case depthRole:
        return m_order == RowOrder() ? m_rows->depth(number) : 0;
    default:
        return {};
    }
}

QHash<int, QByteArray> RowsModel::roleNames() const {
    return {{cellsRole, "cells"},
            {selectedRole, "selected"},
            {currentRole, "current"},
            {missingRole, "missing"},
            {depthRole, "depth"}};
}

QString RowsModel::countText() const {
    QString text = QString::number(count());
    if (count() != total()) {
        text += QStringLiteral(" OF %1").arg(total());
    }
    if (m_selectedCount > 0) {
        text += QStringLiteral("  \u00b7  %1 SELECTED").arg(m_selectedCount);
    }
    return text;
}

QVariantList RowsModel::columns() const {
    QVariantList list;
    if (m_rows) {
        for (const Column& column : m_rows->columns()) {
            list << QVariantMap{
                {"title", column.title}, {"share", column.share}, {"isNumber", column.isNumber}};
        }
    }
    return list;
}

void RowsModel::setSearch(const QString& search) {
    if (search != this->search()) {
        m_order.search = search.toStdString();
        selectNothing();
        announceSelection();
        emit orderChanged();
        arrange();
    }
}

void RowsModel::sortBy(int column) {
    if (!m_rows || column < 0 || column >= static_cast<int>(m_rows->columns().size())) {
        return;
    }
    const bool descendingFirst = m_rows->columns()[static_cast<std::size_t>(column)].isNumber;
    if (m_order.column != column) {
        m_order.column = column;
        m_order.descending = descendingFirst;
    } else if (m_order.descending == descendingFirst) {
        m_order.descending = !descendingFirst;
    } else {
        m_order.column = -1;
        m_order.descending = false;
    }
    emit orderChanged();
    arrange();
}

void RowsModel::select(int row) {
    if (isRow(row)) {
        selectNothing();
        setSelected(row, true);
        m_current = row;
        m_anchor = row;
        announceSelection();
    }
}

void RowsModel::extendTo(int row) {
    if (isRow(row)) {
        selectNothing();
        const int from = std::max(m_anchor, 0);
        for (int other = std::min(from, row); other <= std::max(from, row); ++other) {
            setSelected(other, true);
        }
        m_current = row;
        announceSelection();
    }
}

void RowsModel::toggle(int row) {
    if (isRow(row)) {
        setSelected(row, m_selected.empty() || !m_selected[m_shown[static_cast<std::size_t>(row)]]);
        m_current = row;
        m_anchor = row;
        announceSelection();
    }
}

void RowsModel::selectAll() {
    for (int row = 0; row < count(); ++row) {
        setSelected(row, true);
    }
    announceSelection();
}

void RowsModel::selectNothing() {
    m_selected = {};
    m_selectedCount = 0;
}

void RowsModel::setSelected(int row, bool selected) {
    m_selected.resize(m_rows->size());
    auto&& known = m_selected[m_shown[static_cast<std::size_t>(row)]];
    if (known != selected) {
        known = selected;
        m_selectedCount += selected ? 1 : -1;
    }
}

void RowsModel::announceSelection() {
    if (count() > 0) {
        emit dataChanged(index(0), index(count() - 1), {selectedRole, currentRole});
    }
    emit selectionChanged();
}

void RowsModel::copy() {
    RowNumbers numbers = chosen();
    if (numbers.size() <= fewRows) {
        emit copied(textOf(m_rows.get(), numbers, {}));
        return;
    }
    m_thread.start([this, rows = m_rows, numbers = std::move(numbers), stop = m_ends.get_token()] {
        const QByteArray text = textOf(rows.get(), numbers, stop);
        QMetaObject::invokeMethod(
            this, [this, text] { emit copied(text); }, Qt::QueuedConnection);
    });
}

RowNumbers RowsModel::chosen() const {
    RowNumbers numbers;
    std::ranges::copy_if(m_shown, std::back_inserter(numbers),
                         [this](std::uint32_t number) { return m_selectedCount == 0 || m_selected[number]; });
    return numbers;
}

QByteArray RowsModel::placeOf(int row) const {
    return isRow(row)
               ? QByteArray::fromStdString(m_rows->place(m_shown[static_cast<std::size_t>(row)]).native())
               : QByteArray();
}

} // namespace velmora
