#pragma once

// The bar that fills while a scan measures.

#include "ui/kit/PaintedItem.h"

#include <QtQml/qqmlregistration.h>

namespace velmora {

class ProgressCapsule : public velmora::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double progress MEMBER m_progress NOTIFY changed)

public:
    using PaintedItem::PaintedItem;

    QMarginsF overflow() const override;

    QAccessible::Role spokenRole() const override { return QAccessible::ProgressBar; }

    /// The width of the filled part, in points; 6 or more.
    double filledWidth() const;

protected:
    void paint(QPainter& painter) const override;

private:
    double m_progress = 0; ///< from 0 to 1
};

} // namespace velmora
