#pragma once

// The signs on the buttons of the title bar, drawn as thin lines.

#include "ui/kit/PaintedItem.h"

#include <QColor>
#include <QtQml/qqmlregistration.h>

namespace velmora {

class TitleBarGlyph : public velmora::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(Sign sign MEMBER m_sign NOTIFY changed)
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY changed)

public:
    enum Sign : int { Menu, Minimize, Maximize, Restore, Close };
    Q_ENUM(Sign)

    explicit TitleBarGlyph(QQuickItem* parent = nullptr);

protected:
    void paint(QPainter& painter) const override;

private:
    Sign m_sign = Menu;
    QColor m_color;
};

} // namespace velmora
