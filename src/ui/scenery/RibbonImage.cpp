#include "ui/scenery/RibbonImage.h"

#include "ui/kit/Neon.h"
#include "ui/scenery/Dither.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace velmora {

namespace {

/// The distance between the points of the grid on which the glow is computed. The glow is so soft that a
/// finer grid would look the same.
constexpr double cell = 4;

/// The glow ends at this distance from the ribbon, in radii.
constexpr double glowReach = 3;

using Channels = std::array<float, 4>; // blue, green, red, alpha: the order of the bytes in a pixel

/// From 0 to 1.
Channels channelsOf(const QColor& opaque) {
    return {opaque.blueF(), opaque.greenF(), opaque.redF(), 1};
}

/// From 0 to 255.
Channels channels(const AccentMix& mix) {
    static const Channels violet = channelsOf(Neon::violet);
    static const Channels indigo = channelsOf(Neon::indigo);
    Channels mixed{};
    for (std::size_t i = 0; i < mixed.size(); ++i) {
        mixed[i] = 255 * (mix.violet * violet[i] + mix.indigo * indigo[i]);
    }
    return mixed;
}

/// exp(-x * x / 2) for x from 0 to `glowReach`.
float bell(double x) {
    constexpr std::size_t entries = 768;
    static const std::vector<float> table = [] {
        std::vector<float> values(entries + 1);
        for (std::size_t i = 0; i < values.size(); ++i) {
            const double at = glowReach * static_cast<double>(i) / entries;
            values[i] = static_cast<float>(std::exp(-at * at / 2));
        }
        return values;
    }();
    return table[std::min(static_cast<std::size_t>(std::abs(x) * entries / glowReach), entries)];
}

/// Channels of an expanded row are fixed-point numbers: this many steps for each of the 255 steps of a pixel.
constexpr int subSteps = 64;

/// Two rows are blended in this many steps, which are those of the dither pattern, too.
constexpr int blendSteps = 16;

/// The first pixel whose middle is at or after the knot that follows `knot`.
std::size_t firstPixelAfter(int knot, double cellPixels) {
    return static_cast<std::size_t>(std::ceil((knot + 1) * cellPixels - 0.5));
}

/// For each pixel of a row, how far it is from the knot on its left to that on its right, from 0 to 1.
std::vector<float> sharesOfRow(int pixels, double cellPixels) {
    std::vector<float> shares(static_cast<std::size_t>(pixels));
    int knot = 0;
    for (std::size_t pixel = 0; pixel < shares.size(); ++pixel) {
        while (pixel >= firstPixelAfter(knot, cellPixels)) {
            ++knot;
        }
        shares[pixel] = static_cast<float>((static_cast<double>(pixel) + 0.5) / cellPixels - knot);
    }
    return shares;
}

/// Divides the weighted sum of two fixed-point channels by `subSteps * blendSteps`.
constexpr unsigned sumShift = 10;

/// One row of the glow's grid at full width: four channels a pixel. A pixel's share is that of the knot to
/// its right.
void expandRow(const AccentMix* knots, double cellPixels, const std::vector<float>& shares,
               std::vector<std::uint16_t>& row) {
    row.resize(shares.size() * 4);
    std::uint16_t* out = row.data();
    std::size_t pixel = 0;
    Channels right = channels(knots[0]);
    for (int knot = 0; pixel < shares.size(); ++knot) {
        const Channels left = right;
        right = channels(knots[knot + 1]);
        Channels rise{};
        for (std::size_t channel = 0; channel < 4; ++channel) {
            rise[channel] = right[channel] - left[channel];
        }
        const auto end = std::min(shares.size(), firstPixelAfter(knot, cellPixels));
        for (; pixel < end; ++pixel) {
            for (std::size_t channel = 0; channel < 4; ++channel) {
                const float value = left[channel] + shares[pixel] * rise[channel];
                *out++ = static_cast<std::uint16_t>(value * subSteps);
            }
        }
    }
}

/// Blends two expanded rows into the pixels of an image row, with `weight` sixteenths of the lower one. The
/// loop over 16 values at a time is one that compilers vectorise.
void blendRows(const std::vector<std::uint16_t>& upper, const std::vector<std::uint16_t>& lower, int weight,
               const std::array<int, 4>& sixteenths, uchar* pixels) {
    std::array<std::uint16_t, blendSteps> offsets{};
    for (std::size_t i = 0; i < offsets.size(); ++i) {
        offsets[i] = static_cast<std::uint16_t>(sixteenths[i / 4] * subSteps + subSteps / 2);
    }
    const auto below = static_cast<std::uint16_t>(weight);
    const auto above = static_cast<std::uint16_t>(blendSteps - weight);
    const std::size_t whole = upper.size() / blendSteps * blendSteps;
    for (std::size_t i = 0; i < whole; i += blendSteps) {
        for (std::size_t j = 0; j < blendSteps; ++j) {
            const auto sum =
                static_cast<std::uint16_t>(upper[i + j] * above + lower[i + j] * below + offsets[j]);
            pixels[i + j] = static_cast<uchar>(sum >> sumShift);
        }
    }
    for (std::size_t i = whole; i < upper.size(); ++i) {
        pixels[i] =
            static_cast<uchar>((upper[i] * above + lower[i] * below + offsets[i % blendSteps]) >> sumShift);
    }
}

/// The integral of max(x, 0).
double ramp(double x) {
    return x > 0 ? x * x / 2 : 0;
}

/// The area of a sloping band above `y`, within one column of pixels. The middle of the band is at y = 0 in
/// the middle of the column, and `lean` higher or lower at the edges of the column. The band reaches `half`
/// above and below its middle.
double areaAbove(double y, double half, double lean) {
    return (ramp(y + half + lean) - ramp(y + half - lean) - ramp(y - half + lean) + ramp(y - half - lean)) /
           (2 * lean);
}

void drawOver(QRgb& pixel, const Channels& color, float coverage) {
    const float kept = 1 - color[3] * coverage / 255;
    const auto channel = [&](int below, float above) {
        return static_cast<int>(static_cast<float>(below) * kept + above * coverage + 0.5F);
    };
    pixel = qRgba(channel(qRed(pixel), color[2]), channel(qGreen(pixel), color[1]),
                  channel(qBlue(pixel), color[0]), channel(qAlpha(pixel), color[3]));
}

} // namespace

void RibbonImage::draw(const RibbonSet& ribbons, double scale) {
    placeRows(ribbons, scale);
    gatherGlow(ribbons);
    drawGlow(scale);
    for (const RibbonCurve& curve : ribbons.curves) {
        drawRibbon(ribbons, curve, scale);
    }
}

void RibbonImage::placeRows(const RibbonSet& ribbons, double scale) {
    double top = ribbons.size.height();
    double bottom = 0;
    for (const RibbonCurve& curve : ribbons.curves) {
        const auto [highest, lowest] = std::ranges::minmax(curve.path);
        top = std::min(top, highest);
        bottom = std::max(bottom, lowest);
    }
    // Multiples of the grid's cell are whole pixels at every usual scale.
    const double reach = 2 * glowReach * ribbonGlowRadius;
    top = std::max(0.0, std::floor((top - reach) / cell) * cell);
    bottom = std::min(ribbons.size.height(), std::ceil((bottom + reach) / cell) * cell);
    const QSize pixels(static_cast<int>(std::ceil(ribbons.size.width() * scale)),
                       static_cast<int>(std::ceil((bottom - top) * scale)));
    m_area = QRectF(QPointF(0, top), QSizeF(pixels) / scale);
    if (m_image.size() != pixels || !m_image.isDetached()) {
        m_image = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
    }
}

void RibbonImage::gatherGlow(const RibbonSet& ribbons) {
    m_columns = static_cast<int>(std::ceil(m_area.width() / cell)) + 2;
    m_rows = static_cast<int>(std::ceil(m_area.height() / cell)) + 2;
    m_glow.assign(static_cast<std::size_t>(m_columns) * static_cast<std::size_t>(m_rows), {});
    for (int column = 0; column < m_columns; ++column) {
        const double x = std::min(column * cell, ribbons.size.width());
        const double peak = ribbons.glowPeak(x);
        for (const RibbonCurve& curve : ribbons.curves) {
            const RibbonPoint point = curve.at(x);
            const AccentMix color = ribbons.color(curve, x);
            // The width of the glow is that across the line; along a column it grows with the slope.
            const double spread = ribbonGlowRadius * std::sqrt(1 + point.slope * point.slope);
            const double middle = (point.y - m_area.top()) / cell;
            const double reach = glowReach * spread / cell;
            const int last = std::min(m_rows - 1, static_cast<int>(middle + reach));
            for (int row = std::max(0, static_cast<int>(middle - reach)); row <= last; ++row) {
                const auto glow = static_cast<float>(peak) * bell((row - middle) * cell / spread);
                AccentMix& knot = m_glow[static_cast<std::size_t>(row) * static_cast<std::size_t>(m_columns) +
                                         static_cast<std::size_t>(column)];
                knot.violet += glow * color.violet;
                knot.indigo += glow * color.indigo;
            }
        }
    }
}

void RibbonImage::drawGlow(double scale) {
    const double cellPixels = cell * scale;
    const std::vector<float> shares = sharesOfRow(m_image.width(), cellPixels);
    std::vector<std::uint16_t> upper;
    std::vector<std::uint16_t> lower;
    int expanded = -1; // the grid's row that `upper` holds
    for (int y = 0; y < m_image.height(); ++y) {
        const double at = (y + 0.5) / cellPixels;
        const int row = static_cast<int>(at);
        if (row != expanded) {
            const AccentMix* knots =
                &m_glow[static_cast<std::size_t>(row) * static_cast<std::size_t>(m_columns)];
            if (row == expanded + 1 && expanded >= 0) {
                upper.swap(lower);
            } else {
                expandRow(knots, cellPixels, shares, upper);
            }
            expandRow(knots + m_columns, cellPixels, shares, lower);
            expanded = row;
        }
        blendRows(upper, lower, static_cast<int>(std::lround((at - row) * blendSteps)),
                  ditherSixteenths[static_cast<std::size_t>(y) % 4], m_image.scanLine(y));
    }
}

void RibbonImage::drawRibbon(const RibbonSet& ribbons, const RibbonCurve& curve, double scale) {
    uchar* const bytes = m_image.bits();
    const auto bytesPerLine = m_image.bytesPerLine();
    const int columns =
        std::min(m_image.width(), static_cast<int>((curve.end() + ribbonWidth / 2) * scale) + 1);
    for (int column = 0; column < columns; ++column) {
        const double x = (column + 0.5) / scale;
        const RibbonPoint point = curve.at(x);
        const Channels color = channels(ribbons.color(curve, x));
        const double middle = (point.y - m_area.top()) * scale;
        const double half = ribbonWidth / 2 * scale * std::sqrt(1 + point.slope * point.slope);
        const double lean = std::max(std::abs(point.slope) / 2, 1e-3);
        const int first = std::max(0, static_cast<int>(std::floor(middle - half - lean)));
        const int last = std::min(m_image.height() - 1, static_cast<int>(std::floor(middle + half + lean)));
        double above = areaAbove(first - middle, half, lean);
        for (int row = first; row <= last; ++row) {
            const double next = areaAbove(row + 1 - middle, half, lean);
            auto* pixels = reinterpret_cast<QRgb*>(bytes + row * bytesPerLine);
            drawOver(pixels[column], color, static_cast<float>(next - above));
            above = next;
        }
    }
}

} // namespace velmora
