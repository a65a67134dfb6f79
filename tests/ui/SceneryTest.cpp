#include "tests/ui/UiTest.h"
#include "ui/kit/Glow.h"
#include "ui/kit/Neon.h"
#include "ui/scenery/RibbonImage.h"
#include "ui/scenery/SpectrumFormula.h"

#include <QPainter>
#include <QPainterPath>

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

namespace velmora::test {
namespace {

constexpr double someTime = 812'000'000;

class SceneryTest : public UiTest {
protected:
    /// Shows one scenery item of the module alone.
    QQuickItem* showItem(const QByteArray& type, const QSize& points, double intensity) {
        return show(type.constData(), {{"intensity", intensity}, {"time", someTime}}, points);
    }
};

/// What the backdrop's layers add up to at `at`, in points.
QColor backdropAt(const QPointF& at, const QSizeF& size) {
    const double w = size.width();
    const double h = size.height();
    const double t = (at.x() * w + at.y() * h) / (w * w + h * h);
    const QColor linear =
        t < 0.5 ? over(Neon::bgTop, Neon::bgMid, 2 * t) : over(Neon::bgMid, Neon::bgBottom, 2 * t - 1);
    const auto share = [&at](double x, double y, double start, double end) {
        return std::clamp((std::hypot(at.x() - x, at.y() - y) - start) / (end - start), 0.0, 1.0);
    };
    const QColor lit = over(linear, Neon::violet, 0.16 * (1 - share(0.14 * w, 0.1 * h, 4, 620)));
    const QColor twice = over(lit, Neon::indigo, 0.18 * (1 - share(0.88 * w, 0.94 * h, 4, 660)));
    return over(twice, Qt::black, 0.55 * share(w / 2, h / 2, 220, 780));
}

TEST_F(SceneryTest, LightsTheBackdropInTwoCornersAndDarkensItsEdges) {
    show("Backdrop", {}, {940, 700});
    const QImage image = grab();
    for (const QPoint& at : {QPoint(3, 3), QPoint(936, 3), QPoint(3, 696), QPoint(936, 696), QPoint(132, 71),
                             QPoint(827, 658), QPoint(470, 350), QPoint(700, 100)}) {
        EXPECT_LE(distance(image.pixelColor(at), backdropAt(QPointF(at) + QPointF(0.5, 0.5), {940, 700})), 1)
            << at.x() << " " << at.y();
    }
}

TEST_F(SceneryTest, DrawsAFaintLineEveryThirtyFourPoints) {
    show("Backdrop", {}, {940, 700});
    const QImage image = grab();
    double onLines = 0;
    double beside = 0;
    for (int x = 34; x < 940; x += 34) {
        for (int y = 1; y < 33; ++y) {
            onLines += image.pixelColor(x, y).blueF();
            beside += (image.pixelColor(x - 1, y).blueF() + image.pixelColor(x + 1, y).blueF()) / 2;
        }
    }
    const double cells = 27 * 32;
    EXPECT_NEAR((onLines - beside) / cells, 0.045 * 0.5, 0.004);
}

TEST_F(SceneryTest, DrawsTheRibbonsWhereTheFormulaPutsThem) {
    showItem("WaveField", {940, 660}, 1);
    const QImage image = grab();
    const std::vector<double> path = ribbonPath(ribbon(0, 660, 1, someTime), ribbonEnvelopes(940), 940, 660);
    for (std::size_t i = 40; i < path.size() - 40; i += 7) {
        const int x = static_cast<int>(static_cast<double>(i) * ribbonStep);
        int brightest = 0;
        for (int y = static_cast<int>(path[i]) - 2; y <= static_cast<int>(path[i]) + 2; ++y) {
            brightest = std::max(brightest, image.pixelColor(x, y).blue());
        }
        EXPECT_GT(brightest, 80) << x;
    }
}

/// The field drawn with a general painter and a general blur.
QImage paintedRibbons(const RibbonSet& ribbons) {
    QImage sharp(ribbons.size.toSize(), QImage::Format_ARGB32_Premultiplied);
    sharp.fill(Qt::transparent);
    QPainter painter(&sharp);
    painter.setRenderHint(QPainter::Antialiasing);
    for (const RibbonCurve& curve : ribbons.curves) {
        QPolygonF line;
        for (std::size_t i = 0; i < curve.path.size(); ++i) {
            line << QPointF(static_cast<double>(i) * ribbonStep, curve.path[i]);
        }
        QLinearGradient gradient(0, 0, ribbons.size.width(), 0);
        gradient.setColorAt(0, Neon::faded(Neon::violet, curve.ribbon.violetOpacity));
        gradient.setColorAt(0.5, Neon::faded(Neon::indigo, curve.ribbon.indigoOpacity));
        gradient.setColorAt(1, Neon::faded(Neon::violet, curve.ribbon.violetOpacity));
        painter.setPen(QPen(gradient, ribbonWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(line);
    }
    painter.end();
    QImage result(sharp.size(), QImage::Format_RGB32);
    std::vector<CoverageMap> channels(3, CoverageMap{sharp.width(), sharp.height(), {}});
    for (int y = 0; y < sharp.height(); ++y) {
        for (int x = 0; x < sharp.width(); ++x) {
            const QRgb pixel = reinterpret_cast<const QRgb*>(sharp.constScanLine(y))[x];
            channels[0].values.push_back(static_cast<float>(qRed(pixel)));
            channels[1].values.push_back(static_cast<float>(qGreen(pixel)));
            channels[2].values.push_back(static_cast<float>(qBlue(pixel)));
        }
    }
    for (CoverageMap& channel : channels) {
        blur(channel, ribbonGlowRadius);
    }
    for (int y = 0; y < sharp.height(); ++y) {
        for (int x = 0; x < sharp.width(); ++x) {
            const QRgb pixel = reinterpret_cast<const QRgb*>(sharp.constScanLine(y))[x];
            const std::size_t at = pixelIndex(x, y, sharp.width());
            const auto add = [&](int channel, std::size_t i) {
                const float kept = 1 - static_cast<float>(qAlpha(pixel)) / 255;
                return static_cast<int>(
                    std::lround(static_cast<float>(channel) + channels[i].values[at] * kept));
            };
            result.setPixel(x, y, qRgb(add(qRed(pixel), 0), add(qGreen(pixel), 1), add(qBlue(pixel), 2)));
        }
    }
    return result;
}

TEST_F(SceneryTest, DrawsTheRibbonsAsAGeneralPainterDoes) {
    const RibbonSet ribbons = RibbonSet::at({600, 400}, 0.74, someTime);
    RibbonImage field;
    field.draw(ribbons, 1);
    QImage drawn(600, 400, QImage::Format_RGB32);
    drawn.fill(Qt::black);
    QPainter(&drawn).drawImage(field.area(), field.image());
    const QImage expected = paintedRibbons(ribbons);
    double squares = 0;
    for (int y = 0; y < 400; ++y) {
        for (int x = 0; x < 600; ++x) {
            const int apart = distance(drawn.pixelColor(x, y), expected.pixelColor(x, y));
            squares += apart * apart;
            EXPECT_LT(apart, 60) << x << " " << y; // where ribbons cross, their edges are rounded otherwise
        }
    }
    const double decibels = 10 * std::log10(255.0 * 255 * 600 * 400 / squares);
    EXPECT_GT(decibels, 42);
}

TEST_F(SceneryTest, DrawsAFieldWithoutWidth) {
    RibbonImage field;
    field.draw(RibbonSet::at({0, 660}, 1, someTime), 1);
    EXPECT_TRUE(field.image().isNull() || field.image().width() == 0);
    show("WaveField", {{"intensity", 1.0}, {"time", someTime}}, {1, 100});
    EXPECT_EQ(grab().width(), 1);
}

TEST_F(SceneryTest, StandsEachBarOnTheBottomAsHighAsTheFormulaSays) {
    showItem("SpectrumStrip", {888, 34}, 1);
    const QImage image = grab();
    const std::vector<Bar> bars = spectrumBars(888, 34, 1, someTime);
    for (std::size_t i = 0; i < bars.size(); i += 9) {
        const int x = static_cast<int>(bars[i].x);
        const QColor mix = over(Neon::violet, Neon::indigo, bars[i].blend);
        EXPECT_LE(distance(image.pixelColor(x + 1, 31), over(Qt::black, mix, bars[i].opacity)), 2) << i;
        EXPECT_EQ(image.pixelColor(x + 4, 31), QColor(Qt::black)) << "between the bars";
        double lit = 0;
        for (int y = 0; y < 34; ++y) {
            lit += image.pixelColor(x + 1, y).blueF() / bars[i].opacity;
        }
        EXPECT_NEAR(lit, bars[i].height, 0.5) << i;
    }
}

TEST_F(SceneryTest, DrawsNoBarInAStripNarrowerThanSevenPoints) {
    showItem("SpectrumStrip", {6, 34}, 1);
    QImage empty(6, 34, grab().format());
    empty.fill(Qt::black);
    EXPECT_EQ(grab(), empty);
}

TEST(Glow, SpreadsAPointToAGaussian) {
    constexpr std::size_t side = 61;
    CoverageMap map{side, side, std::vector<float>(side * side)};
    const auto at = [&map](int x, int y) -> float& { return map.values[pixelIndex(x, y, side)]; };
    at(30, 30) = 1;
    blur(map, 5);
    EXPECT_NEAR(std::accumulate(map.values.begin(), map.values.end(), 0.0), 1, 0.002);
    const auto expected = [](double dx, double dy) {
        return std::exp(-(dx * dx + dy * dy) / 50) / (2 * 3.14159265 * 25);
    };
    EXPECT_NEAR(at(30, 30), expected(0, 0), 2e-5);
    EXPECT_NEAR(at(36, 30), expected(6, 0), 2e-5);
    EXPECT_NEAR(at(33, 23), expected(3, 7), 2e-5);
}

} // namespace
} // namespace velmora::test
