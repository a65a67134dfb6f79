#include "ui/kit/Glow.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>

namespace velmora {

namespace {

/// The standard deviation of the Gaussian in pixels while blurring, at most. A finer resolution would look
/// the same.
constexpr double workingSigma = 5;

/// The kernel ends at this many standard deviations; the rest of a Gaussian is below half a step of a pixel.
constexpr double kernelReach = 3.5;

/// The right half of a Gaussian of standard deviation `sigma`, the centre first. The sum of the whole
/// Gaussian is 1.
std::vector<float> halfKernel(double sigma) {
    std::vector<float> kernel;
    double sum = 0;
    const int reach = static_cast<int>(std::ceil(kernelReach * sigma));
    for (int offset = 0; offset <= reach; ++offset) {
        const double weight = std::exp(-offset * offset / (2 * sigma * sigma));
        kernel.push_back(static_cast<float>(weight));
        sum += offset == 0 ? weight : 2 * weight;
    }
    for (float& weight : kernel) {
        weight = static_cast<float>(weight / sum);
    }
    return kernel;
}

/// Blurs along the columns of `map` and returns the result with rows and columns exchanged.
CoverageMap blurredTransposed(const CoverageMap& map, const std::vector<float>& kernel) {
    CoverageMap result{map.height, map.width, std::vector<float>(map.values.size())};
    const int reach = static_cast<int>(kernel.size()) - 1;
    std::vector<float> row(static_cast<std::size_t>(map.width));
    for (int y = 0; y < map.height; ++y) {
        std::ranges::fill(row, 0.0F);
        for (int from = std::max(0, y - reach); from <= std::min(map.height - 1, y + reach); ++from) {
            const float weight = kernel[static_cast<std::size_t>(std::abs(from - y))];
            const float* source = &map.values[static_cast<std::size_t>(from) * row.size()];
            for (std::size_t x = 0; x < row.size(); ++x) {
                row[x] += weight * source[x];
            }
        }
        for (std::size_t x = 0; x < row.size(); ++x) {
            result.values[x * static_cast<std::size_t>(map.height) + static_cast<std::size_t>(y)] = row[x];
        }
    }
    return result;
}

CoverageMap coverageOf(const QImage& image) {
    CoverageMap map{image.width(), image.height(), {}};
    map.values.reserve(static_cast<std::size_t>(map.width) * static_cast<std::size_t>(map.height));
    for (int y = 0; y < map.height; ++y) {
        const auto* pixel = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        std::ranges::transform(pixel, pixel + map.width, std::back_inserter(map.values),
                               [](QRgb argb) { return static_cast<float>(qAlpha(argb)) / 255; });
    }
    return map;
}

QImage tinted(const CoverageMap& map, const QColor& tint) {
    QImage image(map.width, map.height, QImage::Format_ARGB32_Premultiplied);
    const float red = tint.redF();
    const float green = tint.greenF();
    const float blue = tint.blueF();
    const float opacity = tint.alphaF();
    std::size_t at = 0;
    for (int y = 0; y < map.height; ++y) {
        auto* pixel = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < map.width; ++x) {
            const float alpha = map.values[at++] * opacity;
            const auto channel = [alpha](float value) {
                return static_cast<int>(std::lround(255 * alpha * value));
            };
            pixel[x] = qRgba(channel(red), channel(green), channel(blue), channel(1));
        }
    }
    return image;
}

} // namespace

void blur(CoverageMap& map, double sigma) {
    if (sigma <= 0 || map.values.empty()) {
        return;
    }
    const std::vector<float> kernel = halfKernel(sigma);
    map = blurredTransposed(blurredTransposed(map, kernel), kernel);
}

double blurReach(double radius) {
    return std::ceil(3 * radius);
}

void drawBlurred(QPainter& painter, const QRectF& bounds, double radius, const QColor& tint, int copies,
                 const std::function<void(QPainter& painter)>& shape) {
    const double reach = blurReach(radius);
    const QRectF area = bounds.adjusted(-reach, -reach, reach, reach);
    const double scale = std::min(painter.deviceTransform().m11(), workingSigma / radius);
    const QSize pixels(static_cast<int>(std::ceil(area.width() * scale)),
                       static_cast<int>(std::ceil(area.height() * scale)));
    QImage sharp(pixels, QImage::Format_ARGB32_Premultiplied);
    sharp.fill(Qt::transparent);
    QPainter mask(&sharp);
    mask.setRenderHints(painter.renderHints());
    mask.scale(scale, scale);
    mask.translate(-area.topLeft());
    shape(mask);
    mask.end();

    CoverageMap map = coverageOf(sharp);
    blur(map, radius * scale);
    const QImage image = tinted(map, tint);
    for (int copy = 0; copy < copies; ++copy) {
        painter.drawImage(QRectF(area.topLeft(), QSizeF(pixels) / scale), image);
    }
}

} // namespace velmora
