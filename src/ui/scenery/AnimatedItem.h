#pragma once

// The base of the moving scenery. It is drawn again whenever its time changes: as a mesh with a GPU, as an
// image without one.

#include <QImage>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

class QSGGeometryNode;

namespace velmora {

/// A derived class names this base with its namespace: QML's tools do not find it otherwise.
class AnimatedItem : public QQuickItem {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(double intensity MEMBER m_intensity NOTIFY changed)
    Q_PROPERTY(double time MEMBER m_time NOTIFY changed)

public:
    explicit AnimatedItem(QQuickItem* parent = nullptr);

    /// The strength of the motion, from 0 to 1.
    double intensity() const { return m_intensity; }

    /// Seconds since 2001-01-01 00:00 UTC.
    double time() const { return m_time; }

signals:
    void changed();

protected:
    struct Picture {
        QImage image;
        QRectF area; ///< in points
    };

    /// Draws the present state at `scale` pixels a point. An empty image shows nothing.
    virtual Picture picture(double scale) = 0;

    /// Draws the present state into `mesh`; makes a new mesh where that is null.
    virtual QSGGeometryNode* mesh(QSGGeometryNode* mesh, double scale) = 0;

    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData* data) override;
    void geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) override;

private:
    QSGNode* showPicture(QSGNode* old, double scale);

    double m_intensity = 0;
    double m_time = 0;
};

} // namespace velmora
