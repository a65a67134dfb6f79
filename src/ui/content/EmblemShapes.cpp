#include "ui/content/EmblemShapes.h"

#include <QLineF>
#include <QPainterPathStroker>

#include <array>
#include <cstddef>

namespace velmora {

namespace {

constexpr double strokeWidth = 0.066; ///< of the symbol's size: a light weight

/// The heights of the strokes from left to right. Those under the slash are chosen so that it leaves no tiny
/// pieces of them.
using Heights = std::array<double, 7>;
constexpr Heights heightsBesidePlus = {0.22, 0.54, 0.96, 0.4, 0.76, 0.5, 0.2};
constexpr Heights heightsUnderSlash = {0.22, 0.56, 0.96, 0.74, 0.66, 0.42, 0.2};
constexpr double pitch = 0.185; ///< from stroke to stroke

QPainterPath stroked(const QLineF& line, double width) {
    QPainterPath path(line.p1());
    path.lineTo(line.p2());
    QPainterPathStroker stroker;
    stroker.setWidth(width);
    stroker.setCapStyle(Qt::RoundCap);
    return stroker.createStroke(path);
}

QPainterPath waveform(double size, const Heights& heights) {
    QPainterPath path;
    for (std::size_t i = 0; i < heights.size(); ++i) {
        const double x =
            (static_cast<double>(i) - static_cast<double>(heights.size() - 1) / 2) * pitch * size;
        const double half = (heights[i] - strokeWidth) / 2 * size;
        path = path.united(stroked({x, -half, x, half}, strokeWidth * size));
    }
    return path;
}

} // namespace

QPainterPath waveformWithPlus(double size) {
    const QPointF center(0.47 * size, 0.33 * size);
    const double arm = 0.15 * size;
    const double clear = 0.235 * size;
    QPainterPath room;
    room.addEllipse(center, clear, clear);
    const QPainterPath across =
        stroked({center - QPointF(arm, 0), center + QPointF(arm, 0)}, strokeWidth * size);
    const QPainterPath upright =
        stroked({center - QPointF(0, arm), center + QPointF(0, arm)}, strokeWidth * size);
    return waveform(size, heightsBesidePlus).subtracted(room).united(across).united(upright);
}

QPainterPath waveformWithSlash(double size) {
    const QLineF slash(-0.46 * size, -0.46 * size, 0.46 * size, 0.46 * size);
    const QPainterPath room = stroked(slash, 3.4 * strokeWidth * size);
    return waveform(size, heightsUnderSlash).subtracted(room).united(stroked(slash, strokeWidth * size));
}

} // namespace velmora
