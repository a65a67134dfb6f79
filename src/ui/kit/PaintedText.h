#pragma once

// A line of text. Where the text is wider than the item, an ellipsis stands for its end or, on request, its
// middle.

#include "ui/kit/PaintedItem.h"
#include "ui/kit/TextStyle.h"

#include <QColor>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace velmora {

class PaintedText : public velmora::PaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text MEMBER m_text NOTIFY changed)
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY changed)
    Q_PROPERTY(int size READ size WRITE setSize NOTIFY changed)
    Q_PROPERTY(int weight READ weight WRITE setWeight NOTIFY changed)
    Q_PROPERTY(double tracking READ tracking WRITE setTracking NOTIFY changed)
    Q_PROPERTY(bool keepsEnd MEMBER m_keepsEnd NOTIFY changed)
    Q_PROPERTY(bool monospaced READ monospaced WRITE setMonospaced NOTIFY changed)

public:
    explicit PaintedText(QQuickItem* parent = nullptr);

    QString text() const { return m_text; }

    QColor color() const { return m_color; }

    /// `text` as it is shown.
    QString shownText() const;

    const TextStyle& style() const { return m_style; }

    int size() const { return m_style.size; }

    int weight() const { return m_style.weight; }

    double tracking() const { return m_style.tracking; }

    bool monospaced() const { return m_style.monospaced; }

    /// Letters of other scripts may reach above and below a line of the window's typefaces.
    QMarginsF overflow() const override;

    QAccessible::Role spokenRole() const override { return QAccessible::StaticText; }

    void setSize(int points) { set(m_style.size, points); }

    void setWeight(int weight) { set(m_style.weight, static_cast<QFont::Weight>(weight)); }

    void setTracking(double points) { set(m_style.tracking, points); }

    void setMonospaced(bool monospaced) { set(m_style.monospaced, monospaced); }

protected:
    void measure() override;
    void paint(QPainter& painter) const override;

private:
    QString m_text;
    QColor m_color;
    TextStyle m_style;
    bool m_keepsEnd = false; ///< what is too long is cut in its middle
};

} // namespace velmora
