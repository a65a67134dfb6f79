#pragma once

// The background of the window: a dark gradient, a light in each of two corners, a vignette and a faint grid.

#include "ui/kit/PaintedItem.h"

#include <QtQml/qqmlregistration.h>

namespace velmora {

class Backdrop : public velmora::PaintedItem {
    Q_OBJECT
    QML_ELEMENT

public:
    using PaintedItem::PaintedItem;

protected:
    QImage render(const QRectF& area, double scale) const override;
    void paint(QPainter& painter) const override;
};

} // namespace velmora
