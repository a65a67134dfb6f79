#pragma once

// Text that glows: two blurred copies in its tint, and a sharp one in the accents' gradient above them. Its
// digits are equally wide.

#include "ui/kit/PaintedItem.h"
#include "ui/kit/TextStyle.h"

#include <QColor>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace velmora {

class PaintedGlowText : public velmora::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text MEMBER m_text NOTIFY changed)
    Q_PROPERTY(int size MEMBER m_size NOTIFY changed)
    Q_PROPERTY(QColor tint MEMBER m_tint NOTIFY changed)

public:
    explicit PaintedGlowText(QQuickItem* parent = nullptr);

    QString text() const { return m_text; }

    int size() const { return m_size; }

    QColor tint() const { return m_tint; }

    /// The radius of the copies' blur, in points.
    double blurRadius() const;

    TextStyle style() const;

    QMarginsF overflow() const override;

    QAccessible::Role spokenRole() const override { return QAccessible::StaticText; }

protected:
    void measure() override;
    void paint(QPainter& painter) const override;

private:
    QString m_text;
    int m_size = 44; ///< points
    QColor m_tint;
};

} // namespace velmora
