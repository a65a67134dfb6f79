#include "ui/details/TableRow.h"

#include "ui/kit/Neon.h"
#include "ui/kit/TextStyle.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QVariantMap>

#include <algorithm>
#include <cmath>

namespace velmora {

namespace {

constexpr double gap = 12;    ///< points at either side of a cell
constexpr double indent = 14; ///< points a folder
constexpr int maxIndents = 8;

} // namespace

void TableRow::paint(QPainter& painter) const {
    const QFont words = TextStyle{.size = 12, .weight = QFont::Medium}.font();
    const QFont digits = TextStyle{.size = 11, .monospaced = true}.font();
    double left = 0;
    for (qsizetype i = 0; i < std::min(m_cells.size(), m_columns.size()); ++i) {
        const QVariantMap column = m_columns[i].toMap();
        const bool isNumber = column["isNumber"].toBool();
        const double share = column["share"].toDouble() * width();
        const double start = left + gap + (i == 0 ? indent * std::min(m_depth, maxIndents) : 0);
        const double room = left + share - gap - start;
        left += share;

        const QFont& font = isNumber ? digits : words;
        const QFontMetricsF metrics(font);
        const QString text = metrics.elidedText(m_cells[i], Qt::ElideMiddle, room);
        const double x = isNumber ? start + room - metrics.horizontalAdvance(text) : start;
        const double y = std::round((height() - metrics.height()) / 2 + metrics.ascent());
        const bool stands = i == 0 || isNumber;
        painter.setFont(font);
        painter.setPen(m_missing && i != 1 ? Neon::alert : stands ? Neon::ink : Neon::inkDim);
        painter.drawText(QPointF(x, y), text);
    }
}

} // namespace velmora
