#include "ui/scenery/SpectrumStrip.h"

#include <QSGGeometryNode>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace velmora {

namespace {

MeshColor colorOf(const Bar& bar) {
    return accentColor(1 - bar.blend, bar.blend).faded(bar.opacity);
}

/// The distance of a point from the edge of a rounded box, negative inside. The coordinates of the point are
/// relative to the middle of the box.
double distanceFromEdge(double x, double y, double halfWidth, double halfHeight, double radius) {
    const double outX = std::abs(x) - (halfWidth - radius);
    const double outY = std::abs(y) - (halfHeight - radius);
    const double out = std::max(outX, outY);
    const bool isAtCorner = outX > 0 && outY > 0;
    return (isAtCorner ? std::hypot(outX, outY) : out) - radius;
}

void drawBar(QImage& image, const Bar& bar, double scale) {
    const MeshColor color = colorOf(bar);
    const double middleX = bar.x + barWidth / 2;
    const double middleY = image.height() / scale - bar.height / 2;
    const double radius = std::min(barRadius, bar.height / 2);
    const int left = static_cast<int>(bar.x * scale);
    const int right = std::min(image.width(), static_cast<int>(std::ceil((bar.x + barWidth) * scale)));
    for (int y = std::max(0, static_cast<int>(image.height() - bar.height * scale)); y < image.height();
         ++y) {
        auto* pixels = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = left; x < right; ++x) {
            const double distance = distanceFromEdge((x + 0.5) / scale - middleX, (y + 0.5) / scale - middleY,
                                                     barWidth / 2, bar.height / 2, radius);
            const MeshColor shade = color.faded(255 * std::clamp(0.5 - distance * scale, 0.0, 1.0));
            pixels[x] = qRgba(static_cast<int>(shade.red + 0.5F), static_cast<int>(shade.green + 0.5F),
                              static_cast<int>(shade.blue + 0.5F), static_cast<int>(shade.opacity + 0.5F));
        }
    }
}

constexpr int capSteps = 3; ///< between the vertices along a quarter of a circle

/// The directions from the middle of a bar's rounded corner to its edge.
const std::array<QPointF, capSteps + 1>& capDirections() {
    static const std::array<QPointF, capSteps + 1> all = [] {
        std::array<QPointF, capSteps + 1> directions;
        for (std::size_t step = 0; step < directions.size(); ++step) {
            const double angle = static_cast<double>(step) / capSteps * std::numbers::pi / 2;
            directions[step] = {std::cos(angle), std::sin(angle)};
        }
        return directions;
    }();
    return all;
}

/// `direction` turned by a number of quarters.
QPointF turned(const QPointF& direction, int quarters) {
    switch (quarters) {
    case 0:
        return direction;
    case 1:
        return {-direction.y(), direction.x()};
    case 2:
        return -direction;
    default:
        return {direction.y(), -direction.x()};
    }
}

/// Draws a bar whose lower edge is at `bottom`: a triangle fan, and around it a soft edge one pixel wide.
void drawBar(MeshWriter& mesh, const Bar& bar, double bottom, double scale) {
    const MeshColor color = colorOf(bar);
    const double radius = std::min(barRadius, bar.height / 2);
    const double soft = 0.5 / scale;
    const double left = bar.x + radius;
    const double right = bar.x + barWidth - radius;
    const double top = bottom - bar.height + radius;
    const quint32 middle = mesh.addVertex(bar.x + barWidth / 2, bottom - bar.height / 2, color);
    for (int quarter = 0; quarter < 4; ++quarter) {
        const double x = quarter == 0 || quarter == 3 ? right : left;
        const double y = quarter < 2 ? bottom - radius : top;
        for (const QPointF& step : capDirections()) {
            const QPointF direction = turned(step, quarter);
            const QPointF in = QPointF(x, y) + (radius - soft) * direction;
            const QPointF out = QPointF(x, y) + (radius + soft) * direction;
            const quint32 inner = mesh.addVertex(in.x(), in.y(), color);
            const quint32 outer = mesh.addVertex(out.x(), out.y(), {});
            if (inner == middle + 1) {
                continue;
            }
            mesh.addTriangle(middle, inner - 2, inner);
            mesh.addQuad(inner - 2, inner, outer, outer - 2);
        }
    }
    const quint32 first = middle + 1;
    const quint32 last = middle + 2 * 4 * (capSteps + 1) - 1;
    mesh.addTriangle(middle, last, first);
    mesh.addQuad(last, first, first + 1, last + 1);
}

} // namespace

std::vector<Bar> SpectrumStrip::bars() const {
    return spectrumBars(width(), height(), intensity(), time());
}

AnimatedItem::Picture SpectrumStrip::picture(double scale) {
    const QSize pixels(static_cast<int>(std::ceil(width() * scale)),
                       static_cast<int>(std::ceil(height() * scale)));
    if (pixels.isEmpty()) {
        return {};
    }
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    for (const Bar& bar : bars()) {
        drawBar(image, bar, scale);
    }
    return {image, QRectF(QPointF(), QSizeF(pixels) / scale)};
}

QSGGeometryNode* SpectrumStrip::mesh(QSGGeometryNode* mesh, double scale) {
    if (mesh == nullptr) {
        mesh = new QSGGeometryNode;
        prepareMesh(*mesh);
        m_mesh = {};
    }
    const std::vector<Bar> all = bars();
    m_mesh.start(*mesh, static_cast<double>(all.size()));
    for (const Bar& bar : all) {
        drawBar(m_mesh, bar, height(), scale);
    }
    m_mesh.finish();
    return mesh;
}

} // namespace velmora
