#include "ui/scenery/Backdrop.h"

#include "ui/kit/Neon.h"
#include "ui/scenery/Dither.h"
#include "ui/scenery/GridLayer.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
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

/// A row of pixels, one array a channel, so that compilers can vectorise the loops over them. They turn an
/// int into a float several at a time, a std::size_t one by one.
struct Row {
    explicit Row(std::size_t pixels)
        : red(pixels)
        , green(pixels)
        , blue(pixels) {}

    std::vector<float> red;
    std::vector<float> green;
    std::vector<float> blue;
};

/// One channel of one row of the linear gradient: `first` is the position of the first pixel on the diagonal,
/// from 0 to 1, and `step` that from pixel to pixel.
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

class BackdropPainter {
public:
    BackdropPainter(const QSizeF& size, double scale)
        : m_size(size)
        , m_scale(scale) {}

    QImage image() const {
        QImage image((m_size * m_scale).toSize(), QImage::Format_RGB32);
        Row row(static_cast<std::size_t>(image.width()));
        const std::size_t pixels = row.red.size();
        const std::array dither = {thresholds(0, pixels), thresholds(1, pixels), thresholds(2, pixels),
                                   thresholds(3, pixels)};
        for (int y = 0; y < image.height(); ++y) {
            paintRow(row, (y + 0.5) / m_scale);
            store(row, dither[static_cast<std::size_t>(y) % 4], reinterpret_cast<QRgb*>(image.scanLine(y)));
        }
        return image;
    }

private:
    void paintRow(Row& row, double y) const {
        const double w = m_size.width();
        const double h = m_size.height();
        const double diagonal = w * w + h * h;
        const auto first = static_cast<float>((0.5 / m_scale * w + y * h) / diagonal);
        const auto step = static_cast<float>(w / m_scale / diagonal);
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
    }

    void fillOpacity(std::vector<float>& opacity, const Light& light, double y) const {
        const auto centerX = static_cast<float>(light.center.x() * m_size.width());
        const auto distanceY = static_cast<float>(y - light.center.y() * m_size.height());
        const auto start = static_cast<float>(light.startRadius);
        const auto perRadius = static_cast<float>(1 / (light.endRadius - light.startRadius));
        const auto from = static_cast<float>(light.startOpacity);
        const auto rise = static_cast<float>(light.endOpacity - light.startOpacity);
        const auto pixel = static_cast<float>(1 / m_scale);
        for (std::size_t x = 0; x < opacity.size(); ++x) {
            const float distanceX = (static_cast<float>(static_cast<int>(x)) + 0.5F) * pixel - centerX;
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

    static void store(const Row& row, const std::vector<float>& thresholds, QRgb* pixels) {
        for (std::size_t x = 0; x < row.red.size(); ++x) {
            const auto channel = [threshold = thresholds[x]](float value) {
                return static_cast<int>(value * 255 + threshold);
            };
            pixels[x] = qRgb(channel(row.red[x]), channel(row.green[x]), channel(row.blue[x]));
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
