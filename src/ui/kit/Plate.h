#pragma once

// The background of buttons, pills and chips, and the ring around what has the focus: a rounded rectangle
// with a fill, and a border of one point inside its edge, which is lifted where the user wants more contrast.

#include "ui/kit/PaintedItem.h"

#include <QColor>
#include <QtQml/qqmlregistration.h>

namespace velmora {

class Neon;

class Plate : public velmora::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor fill MEMBER m_fill NOTIFY changed)
    Q_PROPERTY(double fillOpacity MEMBER m_fillOpacity NOTIFY changed)
    Q_PROPERTY(QColor border MEMBER m_border NOTIFY changed)
    Q_PROPERTY(double borderOpacity MEMBER m_borderOpacity NOTIFY changed)
    Q_PROPERTY(double radius MEMBER m_radius NOTIFY changed)
    Q_PROPERTY(bool capsule MEMBER m_capsule NOTIFY changed)

public:
    using PaintedItem::PaintedItem;

protected:
    void paint(QPainter& painter) const override;
    void componentComplete() override;

private:
    const Neon* m_neon = nullptr; ///< null outside of QML
    QColor m_fill = Qt::transparent;
    double m_fillOpacity = 1;
    QColor m_border = Qt::transparent;
    double m_borderOpacity = 1;
    double m_radius = 9;    ///< of the corners, in points
    bool m_capsule = false; ///< the ends are half circles; `radius` does not count
};

} // namespace velmora
