#pragma once

// The texts of one row of a table, each cut in its middle where it does not fit its column: names differ at
// their ends. Painted as one image.

#include "ui/kit/PaintedItem.h"

#include <QList>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

namespace velmora {

class TableRow : public velmora::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QStringList cells MEMBER m_cells NOTIFY changed)
    Q_PROPERTY(QVariantList columns READ columns WRITE setColumns NOTIFY changed)
    Q_PROPERTY(int depth MEMBER m_depth NOTIFY changed)
    Q_PROPERTY(bool missing MEMBER m_missing NOTIFY changed)

public:
    using PaintedItem::PaintedItem;

    QVariantList columns() const { return m_columns; }

    void setColumns(const QVariantList& columns) { set(m_columns, columns); }

protected:
    void paint(QPainter& painter) const override;

private:
    QStringList m_cells;
    QVariantList m_columns; ///< of each `share` of the width, `isNumber`
    int m_depth = 0;        ///< of what the first cell names, in folders
    bool m_missing = false; ///< in the total
};

} // namespace velmora
