#pragma once

// The maker's mark with a soft shadow of light. Where its image is missing the space stays empty.

#include "ui/kit/PaintedItem.h"

#include <QImage>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace velmora {

class PaintedLogo : public velmora::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString source READ source WRITE setSource NOTIFY sourceChanged)

public:
    using PaintedItem::PaintedItem;

    /// The name of the image's file or resource.
    QString source() const { return m_source; }

    void setSource(const QString& source);

    QMarginsF overflow() const override;

signals:
    void sourceChanged();

protected:
    void paint(QPainter& painter) const override;

private:
    double shadowRadius() const;

    QString m_source;
    QImage m_image;
};

} // namespace velmora
