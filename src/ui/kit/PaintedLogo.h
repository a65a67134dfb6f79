#pragma once

// The maker's logo with a soft, light shadow. Without its image the space stays empty.

#include "ui/kit/PaintedItem.h"

#include <QImage>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace velmora {

class PaintedLogo : public velmora::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString source MEMBER m_source NOTIFY changed)

public:
    explicit PaintedLogo(QQuickItem* parent = nullptr);

    QMarginsF overflow() const override;

protected:
    void paint(QPainter& painter) const override;

private:
    double shadowRadius() const;

    QString m_source; ///< the name of the image's file or resource
    QImage m_image;
};

} // namespace velmora
