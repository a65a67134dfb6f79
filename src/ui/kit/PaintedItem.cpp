#include "ui/kit/PaintedItem.h"

#include <QPainter>
#include <QQuickWindow>
#include <QSGImageNode>

#include <cmath>
#include <memory>

namespace velmora {

namespace {

/// The largest width and height of an image, in pixels: graphics drivers refuse larger ones.
constexpr int maxPixels = 16384;

} // namespace

PaintedItem::PaintedItem(QQuickItem* parent)
    : QQuickItem(parent) {
    setFlag(ItemHasContents);
    connect(this, &PaintedItem::changed, this, [this] {
        m_stale = true;
        update();
        if (isComponentComplete()) {
            measure();
        }
    });
}

void PaintedItem::componentComplete() {
    QQuickItem::componentComplete();
    measure();
}

/// The painted area in points, widened so that its edges fall on pixels wherever the item stands.
QRectF PaintedItem::alignedArea(double scale) const {
    const QPointF origin = mapToScene({}) * scale;
    const QRectF wanted = QRectF(0, 0, width(), height()).marginsAdded(overflow());
    const double left = std::floor(origin.x() + wanted.left() * scale) - origin.x();
    const double top = std::floor(origin.y() + wanted.top() * scale) - origin.y();
    const double right = std::ceil(origin.x() + wanted.right() * scale) - origin.x();
    const double bottom = std::ceil(origin.y() + wanted.bottom() * scale) - origin.y();
    return {left / scale, top / scale, (right - left) / scale, (bottom - top) / scale};
}

QImage PaintedItem::render(const QRectF& area, double scale) const {
    const QSize pixels = (area.size() * scale).toSize().boundedTo({maxPixels, maxPixels});
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing |
                           QPainter::SmoothPixmapTransform);
    painter.scale(scale, scale);
    painter.translate(-area.topLeft());
    paint(painter);
    return image;
}

QSGNode* PaintedItem::updatePaintNode(QSGNode* old, UpdatePaintNodeData* /*data*/) {
    if (!isVisible()) {
        return old;
    }
    auto* node = static_cast<QSGImageNode*>(old);
    if (width() <= 0 || height() <= 0) {
        delete node;
        m_stale = true;
        return nullptr;
    }
    const double scale = window()->effectiveDevicePixelRatio();
    const QRectF area = alignedArea(scale);
    if (node != nullptr && !m_stale && area == m_paintedArea && scale == m_paintedScale) {
        return node;
    }
    if (node == nullptr) {
        node = window()->createImageNode();
        node->setOwnsTexture(true);
        node->setFiltering(QSGTexture::Nearest);
    }
    const QImage image = render(area, scale);
    node->setTexture(window()->createTextureFromImage(image, image.hasAlphaChannel()
                                                                 ? QQuickWindow::TextureHasAlphaChannel
                                                                 : QQuickWindow::TextureIsOpaque));
    node->setSourceRect(image.rect());
    node->setRect(area);
    m_stale = false;
    m_paintedArea = area;
    m_paintedScale = scale;
    return node;
}

void PaintedItem::itemChange(ItemChange change, const ItemChangeData& value) {
    if (change == ItemDevicePixelRatioHasChanged || change == ItemVisibleHasChanged) {
        update();
    }
    if (change == ItemSceneChange && value.window != nullptr) {
        m_stale = true; // the texture belongs to the window it was made in
        connect(value.window, &QQuickWindow::widthChanged, this, &QQuickItem::update);
        connect(value.window, &QQuickWindow::heightChanged, this, &QQuickItem::update);
    }
    QQuickItem::itemChange(change, value);
}

} // namespace velmora
