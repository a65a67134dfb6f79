#pragma once

// The emblem of the drop prompt: a waveform with a plus in two circles. It is painted at its magnification,
// not scaled as an image, so that it stays sharp.

#include "ui/kit/PaintedItem.h"

#include <QtQml/qqmlregistration.h>

namespace velmora {

class DropEmblem : public velmora::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double magnification MEMBER m_magnification NOTIFY changed)

public:
    explicit DropEmblem(QQuickItem* parent = nullptr);

    QMarginsF overflow() const override;

protected:
    void paint(QPainter& painter) const override;

private:
    double m_magnification = 1; ///< about the middle
};

} // namespace velmora
