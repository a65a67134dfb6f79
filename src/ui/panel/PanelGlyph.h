#pragma once

// The small signs of the file panel, drawn as thin lines.

#include "ui/kit/PaintedItem.h"

#include <QColor>
#include <QtQml/qqmlregistration.h>

namespace velmora {

class PanelGlyph : public velmora::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(Sign sign MEMBER m_sign NOTIFY changed)
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY changed)

public:
    /// The first four in the order of ListedKind.
    enum Sign : int { Folder, Audio, Archive, Other, Back, Up, Ascending, Descending };
    Q_ENUM(Sign)

    explicit PanelGlyph(QQuickItem* parent = nullptr);

protected:
    void paint(QPainter& painter) const override;

private:
    Sign m_sign = Folder;
    QColor m_color;
};

} // namespace velmora
