#pragma once

// A line of text. Wider than the item it ends in an ellipsis.

#include "ui/kit/PaintedItem.h"
#include "ui/kit/TextStyle.h"

#include <QColor>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace velmora {

class PaintedText : public velmora::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY changed)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY changed)
    Q_PROPERTY(int size READ size WRITE setSize NOTIFY changed)
    Q_PROPERTY(int weight READ weight WRITE setWeight NOTIFY changed)
    Q_PROPERTY(double tracking READ tracking WRITE setTracking NOTIFY changed)
    Q_PROPERTY(bool monospaced READ monospaced WRITE setMonospaced NOTIFY changed)

public:
    explicit PaintedText(QQuickItem* parent = nullptr);

    QString text() const { return m_text; }

    QColor color() const { return m_color; }

    const TextStyle& style() const { return m_style; }

    int size() const { return m_style.size; }

    int weight() const { return m_style.weight; }

    double tracking() const { return m_style.tracking; }

    bool monospaced() const { return m_style.monospaced; }

    /// Letters of other scripts may stand higher and lower than a line of the window's typefaces.
    QMarginsF overflow() const override;

    void setText(const QString& text);
    void setColor(const QColor& color);
    void setSize(int points);
    void setWeight(int weight);
    void setTracking(double points);
    void setMonospaced(bool monospaced);

signals:
    void changed();

protected:
    void paint(QPainter& painter) const override;

private:
    void setStyle(const TextStyle& style);
    void announce();

    QString m_text;
    QColor m_color;
    TextStyle m_style;
};

} // namespace velmora
