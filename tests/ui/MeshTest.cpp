// The mesh that a GPU is given, drawn here as a GPU would draw it, against the image that is shown without
// one.

#include "tests/ui/UiTest.h"
#include "ui/scenery/RibbonImage.h"
#include "ui/scenery/RibbonMesh.h"

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace velmora::test {
namespace {

using Vertex = QSGGeometry::ColoredPoint2D;

/// A picture of premultiplied colours: red, green, blue, opacity, from 0 to 255.
struct Canvas {
    int width = 0;
    int height = 0;
    std::vector<std::array<double, 4>> pixels;
};

/// Twice the area to the left of the line from `a` to (x, y), seen from `b`.
double side(const Vertex& a, const Vertex& b, double x, double y) {
    return (double{b.x} - a.x) * (y - a.y) - (double{b.y} - a.y) * (x - a.x);
}

/// Whether a pixel on the edge from `a` to `b` belongs to the triangle: to one of two that share it.
bool owns(const Vertex& a, const Vertex& b) {
    return b.y < a.y || (b.y == a.y && b.x > a.x);
}

void blend(std::array<double, 4>& pixel, const std::array<double, 4>& color) {
    for (std::size_t channel = 0; channel < 4; ++channel) {
        pixel[channel] = color[channel] + pixel[channel] * (1 - color[3] / 255);
    }
}

void drawTriangle(Canvas& canvas, const Vertex& a, Vertex b, Vertex c, double scale) {
    double area = side(a, b, c.x, c.y);
    if (area < 0) {
        std::swap(b, c);
        area = -area;
    }
    const auto [left, right] = std::minmax({a.x, b.x, c.x});
    const auto [top, bottom] = std::minmax({a.y, b.y, c.y});
    for (int row = std::max(0, static_cast<int>(top * scale) - 1);
         row < std::min(canvas.height, static_cast<int>(bottom * scale) + 2); ++row) {
        for (int column = std::max(0, static_cast<int>(left * scale) - 1);
             column < std::min(canvas.width, static_cast<int>(right * scale) + 2); ++column) {
            const double x = (column + 0.5) / scale;
            const double y = (row + 0.5) / scale;
            const double toC = side(a, b, x, y);
            const double toA = side(b, c, x, y);
            const double toB = side(c, a, x, y);
            if (area > 0 && (toC > 0 || (toC == 0 && owns(a, b))) && (toA > 0 || (toA == 0 && owns(b, c))) &&
                (toB > 0 || (toB == 0 && owns(c, a)))) {
                const auto mix = [&](uchar atA, uchar atB, uchar atC) {
                    return (atA * toA + atB * toB + atC * toC) / area;
                };
                blend(canvas.pixels[pixelIndex(column, row, canvas.width)],
                      {mix(a.r, b.r, c.r), mix(a.g, b.g, c.g), mix(a.b, b.b, c.b), mix(a.a, b.a, c.a)});
            }
        }
    }
}

Canvas drawn(const QSGGeometry& mesh, const QSize& points, double scale) {
    Canvas canvas{static_cast<int>(points.width() * scale), static_cast<int>(points.height() * scale), {}};
    canvas.pixels.resize(static_cast<std::size_t>(canvas.width) * static_cast<std::size_t>(canvas.height));
    const Vertex* vertices = mesh.vertexDataAsColoredPoint2D();
    const auto vertex = [&](int i) {
        return vertices[mesh.indexType() == QSGGeometry::UnsignedShortType ? mesh.indexDataAsUShort()[i]
                                                                           : mesh.indexDataAsUInt()[i]];
    };
    const int step = mesh.drawingMode() == QSGGeometry::DrawTriangleStrip ? 1 : 3;
    for (int i = 0; i + 2 < mesh.indexCount(); i += step) {
        drawTriangle(canvas, vertex(i), vertex(i + 1), vertex(i + 2), scale);
    }
    return canvas;
}

/// How alike the mesh and the image of `ribbons` are on black.
double decibels(RibbonMesh& geometry, const RibbonSet& ribbons, double scale) {
    const QSize points = ribbons.size.toSize();
    geometry.draw(ribbons, scale);
    const Canvas canvas = drawn(*geometry.geometry(), points, scale);
    RibbonImage drawn;
    drawn.draw(ribbons, scale);
    QImage image(canvas.width, canvas.height, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter(&image).drawImage(QPointF(0, drawn.area().top() * scale), drawn.image());
    double squares = 0;
    for (int y = 0; y < canvas.height; ++y) {
        for (int x = 0; x < canvas.width; ++x) {
            const auto& pixel = canvas.pixels[pixelIndex(x, y, canvas.width)];
            const QRgb shown = image.pixel(x, y);
            squares += std::pow(pixel[0] - qRed(shown), 2) + std::pow(pixel[1] - qGreen(shown), 2) +
                       std::pow(pixel[2] - qBlue(shown), 2);
        }
    }
    return 10 * std::log10(255.0 * 255 * 3 * canvas.width * canvas.height / squares);
}

TEST(RibbonMeshTest, LooksAsTheImageDoes) {
    for (const double scale : {1.0, 2.0}) {
        RibbonMesh geometry;
        EXPECT_GT(decibels(geometry, RibbonSet::at({600, 400}, 0.74, 812'000'000), scale), 50) << scale;
    }
}

TEST(RibbonMeshTest, KeepsItsIndicesWhileTheWidthStays) {
    RibbonMesh geometry;
    RibbonSet ribbons;
    for (const QSizeF& size : {QSizeF(600, 400), QSizeF(600, 400), QSizeF(600, 300), QSizeF(500, 300)}) {
        ribbons.move(size, 1, 812'000'000 + size.width());
        EXPECT_GT(decibels(geometry, ribbons, 1), 50) << size.width() << " " << size.height();
    }
}

TEST(RibbonMeshTest, CountsTheVerticesOfAWideFieldToTheLast) {
    RibbonMesh geometry;
    geometry.draw(RibbonSet::at({1000, 100}, 1, 3), 1);
    EXPECT_EQ(geometry.geometry()->indexType(), QSGGeometry::UnsignedShortType);
    EXPECT_GT(decibels(geometry, RibbonSet::at({8000, 60}, 1, 3), 1), 48);
    EXPECT_EQ(geometry.geometry()->indexType(), QSGGeometry::UnsignedIntType);
}

} // namespace
} // namespace velmora::test
