#pragma once

// The card in the middle of the window, which holds the panel of the present phase. It brightens while a drag
// hovers.

#include "ui/kit/PaintedItem.h"

#include <QtQml/qqmlregistration.h>

namespace velmora {

class Card : public velmora::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double highlight MEMBER m_highlight NOTIFY changed)

public:
    using PaintedItem::PaintedItem;

    QMarginsF overflow() const override;

protected:
    void paint(QPainter& painter) const override;

private:
    /// The value on the way from `resting` to `lit`.
    double between(double resting, double lit) const;

    double m_highlight = 0; ///< from 0, at rest, to 1
};

} // namespace velmora
