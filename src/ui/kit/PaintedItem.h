#pragma once

// An item that is painted once and shown as an image: the same pixels with and without a GPU. It is painted
// at the display's resolution when it is first seen, and again only when its content, its size or the scale
// of the display changes.

#include <QAccessible>
#include <QImage>
#include <QMarginsF>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

class QPainter;

namespace velmora {

/// A derived class announces a change of its content with `changed`, by `set` or as the NOTIFY signal of its
/// properties. It names this base with its namespace: QML's tools do not find it otherwise.
class PaintedItem : public QQuickItem {
    Q_OBJECT
    QML_ANONYMOUS

public:
    explicit PaintedItem(QQuickItem* parent = nullptr);

    /// How far the painting reaches beyond the item on each side, in points: room for glows and shadows.
    virtual QMarginsF overflow() const { return {}; }

    /// What assistive technology takes the item for, where Qt's own account of it does not do: static text,
    /// with its property `text`, or a progress bar, with `label`, `value`, `minimumValue`, `maximumValue`.
    virtual QAccessible::Role spokenRole() const { return QAccessible::NoRole; }

signals:
    /// The content has changed. The item is painted again.
    void changed();

protected:
    /// Sets the implicit size, where that follows from the content. Called after each change, and once when
    /// the item has been made: to measure a text costs a font, and what it looks like in between is never
    /// seen.
    virtual void measure() {}

    /// Gives `member`, a part of the content, the value `value`. Emits `changed` where that differs.
    template <typename T>
    void set(T& member, const T& value) {
        if (member != value) {
            member = value;
            emit changed();
        }
    }

    /// Paints the content in points; the origin is the item's top-left corner. May run on the render thread,
    /// while the main thread waits.
    virtual void paint(QPainter& painter) const = 0;

    /// The image that is shown: what `paint` paints on a transparent background. `scale` is pixels a point.
    virtual QImage render(const QRectF& area, double scale) const;

    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData* data) override;
    void itemChange(ItemChange change, const ItemChangeData& value) override;
    void componentComplete() override;

private:
    QRectF alignedArea(double scale) const;

    bool m_stale = true;
    QRectF m_paintedArea; ///< in points
    double m_paintedScale = 0;
};

} // namespace velmora
