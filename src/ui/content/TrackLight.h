#pragma once

// A light that travels along the track of a progress bar: brightest in its middle, gone at both ends.

#include "ui/kit/PaintedItem.h"

#include <QtQml/qqmlregistration.h>

namespace velmora {

class TrackLight : public velmora::PaintedItem {
    Q_OBJECT
    QML_ELEMENT

public:
    using PaintedItem::PaintedItem;

protected:
    void paint(QPainter& painter) const override;
};

} // namespace velmora
