#include "ui/scenery/AnimatedItem.h"

#include <QQuickWindow>
#include <QSGGeometryNode>
#include <QSGImageNode>
#include <QSGRendererInterface>

namespace velmora {

AnimatedItem::AnimatedItem(QQuickItem* parent)
    : QQuickItem(parent) {
    setFlag(ItemHasContents);
    connect(this, &AnimatedItem::changed, this, &QQuickItem::update);
}

QSGNode* AnimatedItem::updatePaintNode(QSGNode* old, UpdatePaintNodeData* /*data*/) {
    const double scale = window()->effectiveDevicePixelRatio();
    if (window()->rendererInterface()->graphicsApi() == QSGRendererInterface::Software) {
        return showPicture(old, scale);
    }
    return mesh(static_cast<QSGGeometryNode*>(old), scale);
}

QSGNode* AnimatedItem::showPicture(QSGNode* old, double scale) {
    const Picture drawn = picture(scale);
    if (drawn.image.isNull()) {
        delete old;
        return nullptr;
    }
    auto* node = static_cast<QSGImageNode*>(old);
    if (node == nullptr) {
        node = window()->createImageNode();
        node->setOwnsTexture(true);
        node->setFiltering(QSGTexture::Nearest);
    }
    node->setTexture(window()->createTextureFromImage(drawn.image));
    node->setSourceRect(drawn.image.rect());
    node->setRect(drawn.area);
    return node;
}

void AnimatedItem::geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) {
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    update();
}

} // namespace velmora
