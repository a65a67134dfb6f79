#include "ui/kit/DigitCells.h"

#include <QFontMetricsF>

#include <algorithm>

namespace velmora {

namespace {

bool isDigit(QChar letter) {
    return letter >= u'0' && letter <= u'9';
}

double widestDigit(const QFontMetricsF& metrics) {
    double width = 0;
    for (char16_t digit = u'0'; digit <= u'9'; ++digit) {
        width = std::max(width, metrics.horizontalAdvance(QChar(digit)));
    }
    return width;
}

} // namespace

CellText inDigitCells(const QString& text, const TextStyle& style) {
    if (text.isEmpty()) {
        return {};
    }
    const QFontMetricsF metrics(style.font());
    const double cell = widestDigit(metrics);
    CellText result;
    double x = 0;
    for (qsizetype start = 0; start < text.size();) {
        if (isDigit(text[start])) {
            const double advance = metrics.horizontalAdvance(text[start]);
            result.pieces.push_back({text.mid(start, 1), x + (cell - advance) / 2});
            x += cell;
            start += 1;
        } else {
            const auto* const end = std::find_if(text.cbegin() + start, text.cend(), &isDigit);
            const QString between = text.mid(start, end - text.cbegin() - start);
            result.pieces.push_back({between, x});
            x += metrics.horizontalAdvance(between);
            start += between.size();
        }
    }
    result.width = x - style.tracking;
    return result;
}

} // namespace velmora
