#pragma once

// The emblem of a scan that found nothing: a waveform crossed out.

#include "ui/kit/PaintedItem.h"

#include <QColor>
#include <QtQml/qqmlregistration.h>

namespace velmora {

class SlashEmblem : public velmora::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(int size MEMBER m_size NOTIFY changed)
    Q_PROPERTY(QColor tint MEMBER m_tint NOTIFY changed)

public:
    explicit SlashEmblem(QQuickItem* parent = nullptr);

protected:
    void measure() override;
    void paint(QPainter& painter) const override;

private:
    int m_size = 34; ///< points, as of a letter beside it
    QColor m_tint;
};

} // namespace velmora
