#pragma once

// An item that is painted once and shown as an image: the same pixels with and without a GPU. It is painted
// again only when its content, its size or the scale of the display changes, at the display's own
// resolution.

#include <QImage>
#include <QMarginsF>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

class QPainter;

namespace velmora {

/// A derived class names this base with its namespace: only so do QML's tools find it.
class PaintedItem : public QQuickItem {
    Q_OBJECT
    QML_ANONYMOUS

public:
    explicit PaintedItem(QQuickItem* parent = nullptr);

    /// How far the painting reaches beyond the item on each side, in points: room for glows and shadows.
    virtual QMarginsF overflow() const { return {}; }

protected:
    /// Paints the content in points, with the origin in the item's top-left corner. May run on the render
    /// thread while the main thread waits.
    virtual void paint(QPainter& painter) const = 0;

    /// The image that is shown: what `paint` paints on a transparent ground. `scale` is pixels a point.
    virtual QImage render(const QRectF& area, double scale) const;

    /// The content has changed.
    void repaint();

    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData* data) override;
    void itemChange(ItemChange change, const ItemChangeData& value) override;

private:
    QRectF alignedArea(double scale) const;

    bool m_stale = true;
    QRectF m_paintedArea; ///< in points
    double m_paintedScale = 0;
};

} // namespace velmora
