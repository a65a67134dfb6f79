#include "ui/scenery/Backdrop.h"

#include "ui/kit/Neon.h"
#include "ui/scenery/Dither.h"
#include "ui/scenery/GridLayer.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace velmora {

namespace {

struct Light {
    QColor color;
    double startOpacity;
    double endOpacity;
    QPointF center; ///< in shares of the size
    double startRadius;
    double endRadius;
};

const std::array<Light, 3>& lights() {
    static const std::array<Light, 3> all = {{
        {Neon::violet, 0.16, 0, {0.14, 0.1}, 4, 620},
        {Neon::indigo, 0.18, 0, {0.88, 0.94}, 4, 660},
        {Qt::black, 0, 0.55, {0.5, 0.5}, 220, 780},
    }};
    return all;
}

/// Colours are computed at knots this many pixels apart, and between them blended: they change so slowly that
/// no pixel gets another colour by more than a fraction of a step.
constexpr std::size_t cell = 8;

/// A row of knots or pixels, one array a channel, so that compilers can vectorise the loops over them. They
/// turn an int into a float several at a time, a std::size_t one by one.
struct Row {
    explicit Row(std::size_t size)
        : red(size)
        , green(size)
        , blue(size) {}

    std::vector<float> red;
    std::vector<float> green;
    std::vector<float> blue;
};

/// One channel of one row of the linear gradient: `first` is the position of the first knot on the diagonal,
/// from 0 to 1, and `step` that from knot to knot.
void fillLinear(std::vector<float>& channel, float top, float middle, float bottom, float first, float step) {
    for (std::size_t x = 0; x < channel.size(); ++x) {
        const float t =
            2 * (first + static_cast<float>(static_cast<int>(x)) * step); // 1 in the middle, 2 at the bottom
        const float upper = std::min(t, 1.0F);
        const float lower = std::max(t - 1, 0.0F);
        channel[x] = top + upper * (middle - top) + lower * (bottom - middle);
    }
}

void blend(std::vector<float>& channel, float color, const std::vector<float>& opacity) {
    for (std::size_t x = 0; x < channel.size(); ++x) {
        channel[x] += opacity[x] * (color - channel[x]);
    }
}

/// Blends from knot to knot; `pixels` has `cell` of them for each but the last.
void expand(const std::vector<float>& knots, std::vector<float>& pixels) {
    for (std::size_t knot = 0; knot + 1 < knots.size(); ++knot) {
        const float rise = (knots[knot + 1] - knots[knot]) / cell;
        for (std::size_t i = 0; i < cell; ++i) {
            pixels[knot * cell + i] = knots[knot] + (static_cast<float>(static_cast<int>(i)) + 0.5F) * rise;
        }
    }
}

class BackdropPainter {
public:
    BackdropPainter(const QSizeF& size, double scale)
        : m_size(size)
        , m_scale(scale) {}

    QImage image() const {
        QImage image((m_size * m_scale).toSize(), QImage::Format_RGB32);
        const auto width = static_cast<std::size_t>(image.width());
        Row knots((width + cell - 1) / cell + 1);
        Row upper((knots.red.size() - 1) * cell);
        Row lower = upper;
        paintRow(knots, 0, lower);
        const std::array dither = {thresholds(0, width), thresholds(1, width), thresholds(2, width),
                                   thresholds(3, width)};
        for (int y = 0; y < image.height(); ++y) {
            const int below = y % static_cast<int>(cell);
            if (below == 0) {
                std::swap(upper, lower);
                paintRow(knots, (y + static_cast<int>(cell)) / m_scale, lower);
            }
            store(upper, lower, (static_cast<float>(below) + 0.5F) / cell,
                  dither[static_cast<std::size_t>(y) % 4], reinterpret_cast<QRgb*>(image.scanLine(y)));
        }
        return image;
    }

private:
    /// The colours at `y`, in points: at the knots, then at all pixels.
    void paintRow(Row& row, double y, Row& pixels) const {
        const double w = m_size.width();
        const double h = m_size.height();
        const double diagonal = w * w + h * h;
        const auto first = static_cast<float>(y * h / diagonal);
        const auto step = static_cast<float>(w * cell / m_scale / diagonal);
        const QColor& top = Neon::bgTop;
        const QColor& middle = Neon::bgMid;
        const QColor& bottom = Neon::bgBottom;
        fillLinear(row.red, top.redF(), middle.redF(), bottom.redF(), first, step);
        fillLinear(row.green, top.greenF(), middle.greenF(), bottom.greenF(), first, step);
        fillLinear(row.blue, top.blueF(), middle.blueF(), bottom.blueF(), first, step);
        std::vector<float> opacity(row.red.size());
        for (const Light& light : lights()) {
            fillOpacity(opacity, light, y);
            blend(row.red, light.color.redF(), opacity);
            blend(row.green, light.color.greenF(), opacity);
            blend(row.blue, light.color.blueF(), opacity);
        }
        expand(row.red, pixels.red);
        expand(row.green, pixels.green);
        expand(row.blue, pixels.blue);
    }

    void fillOpacity(std::vector<float>& opacity, const Light& light, double y) const {
        const auto centerX = static_cast<float>(light.center.x() * m_size.width());
        const auto distanceY = static_cast<float>(y - light.center.y() * m_size.height());
        const auto start = static_cast<float>(light.startRadius);
        const auto perRadius = static_cast<float>(1 / (light.endRadius - light.startRadius));
        const auto from = static_cast<float>(light.startOpacity);
        const auto rise = static_cast<float>(light.endOpacity - light.startOpacity);
        const auto spacing = static_cast<float>(cell / m_scale);
        for (std::size_t x = 0; x < opacity.size(); ++x) {
            const float distanceX = static_cast<float>(static_cast<int>(x)) * spacing - centerX;
            const float radius = std::sqrt(distanceX * distanceX + distanceY * distanceY);
            opacity[x] = from + rise * std::clamp((radius - start) * perRadius, 0.0F, 1.0F);
        }
    }

    /// What is added to the channels of row `y` before their fraction is cut off.
    static std::vector<float> thresholds(int y, std::size_t pixels) {
        const std::array<int, 4>& sixteenths = ditherSixteenths[static_cast<std::size_t>(y) % 4];
        std::vector<float> row(pixels);
        for (std::size_t x = 0; x < row.size(); ++x) {
            row[x] = (static_cast<float>(sixteenths[x % 4]) + 0.5F) / 16;
        }
        return row;
    }

    /// A row of pixels `share` of the way from `upper` to `lower`.
    static void store(const Row& upper, const Row& lower, float share, const std::vector<float>& thresholds,
                      QRgb* pixels) {
        for (std::size_t x = 0; x < thresholds.size(); ++x) {
            const auto channel = [share, threshold = thresholds[x]](float above, float below) {
                return static_cast<int>((above + share * (below - above)) * 255 + threshold);
            };
            pixels[x] = qRgb(channel(upper.red[x], lower.red[x]), channel(upper.green[x], lower.green[x]),
                             channel(upper.blue[x], lower.blue[x]));
        }
    }

    QSizeF m_size;
    double m_scale;
};

} // namespace

QImage Backdrop::render(const QRectF& area, double scale) const {
    QImage image = BackdropPainter(area.size(), scale).image();
    QPainter painter(&image);
    painter.scale(scale, scale);
    paint(painter);
    return image;
}

void Backdrop::paint(QPainter& painter) const {
    paintGrid(painter, size(), painter.deviceTransform().m11());
}

} // namespace velmora
