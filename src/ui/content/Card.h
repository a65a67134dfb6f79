#pragma once

// The ground of the card in the middle of the window, at rest or lit, as it is while a drag hovers.

#include "ui/kit/PaintedItem.h"

#include <QtQml/qqmlregistration.h>

namespace velmora {

class Card : public velmora::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool lit MEMBER m_lit NOTIFY changed)
    Q_PROPERTY(double minBorderOpacity MEMBER m_minBorderOpacity NOTIFY changed)

public:
    using PaintedItem::PaintedItem;

    QMarginsF overflow() const override;

protected:
    void paint(QPainter& painter) const override;

private:
    /// Of the values for the two states, the one for this.
    double either(double resting, double lit) const { return m_lit ? lit : resting; }

    bool m_lit = false;
    double m_minBorderOpacity = 0; ///< the border is no fainter
};

} // namespace velmora
