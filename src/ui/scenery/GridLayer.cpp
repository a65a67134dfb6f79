#include "ui/scenery/GridLayer.h"

#include "ui/kit/Neon.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace velmora {

void paintGrid(QPainter& painter, const QSizeF& size, double scale) {
    const double width = std::max(1.0, std::round(gridLineWidth * scale)) / scale;
    const QColor color = Neon::faded(Neon::indigo, gridOpacity * gridLineWidth / width);
    const auto snapped = [scale](double position) { return std::floor(position * scale) / scale; };
    for (double x = 0; x <= size.width(); x += gridPitch) {
        painter.fillRect(QRectF(snapped(x), 0, width, size.height()), color);
    }
    for (double y = 0; y <= size.height(); y += gridPitch) {
        painter.fillRect(QRectF(0, snapped(y), size.width(), width), color);
    }
}

} // namespace velmora
