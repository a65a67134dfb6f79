// Glows, shadows and lines, against values that are computed here from the design.

#include "tests/ui/UiTest.h"
#include "ui/kit/Neon.h"
#include "ui/kit/PaintedGlowText.h"
#include "ui/scenery/RibbonImage.h"

#include <QPainter>

#include <gtest/gtest.h>

#include <cmath>

namespace velmora::test {
namespace {

/// The share of a Gaussian of standard deviation `sigma` that lies below `x`.
double below(double x, double sigma) {
    return 0.5 * std::erfc(-x / (sigma * std::sqrt(2.0)));
}

class LightTest : public UiTest {
protected:
    /// Shows `name` with `margin` points of `ground` around it.
    template <typename Item = QQuickItem>
    Item* showOn(const QColor& ground, const char* name, const QVariantMap& properties,
                 const QSize& points = {}, int margin = 60) {
        auto* const item = show<Item>(name, properties, points);
        window->setColor(ground);
        item->setPosition(QPointF(margin, margin));
        window->resize(item->QQuickItem::size().toSize() + QSize(2 * margin, 2 * margin));
        return item;
    }
};

struct CardCase {
    bool lit;
    double shadowOpacity;
    double shadowRadius;
    double lineOpacity;
    int lineWidth;
};

TEST_F(LightTest, ShinesAroundTheCard) {
    for (const CardCase& row : {CardCase{false, 0.12, 14, 0.35, 1}, CardCase{true, 0.35, 26, 0.95, 2}}) {
        showOn(Qt::black, "Card", {{"lit", row.lit}}, {600, 400}, 90);
        const QImage image = grab();
        for (const int away : {5, 15, 30}) {
            const double share = below(-(away + 0.5), row.shadowRadius);
            EXPECT_LE(distance(image.pixelColor(90 + 300, 90 - 1 - away),
                               over(Qt::black, Neon::violet, row.shadowOpacity * share)),
                      2)
                << away << " points above the card, lit: " << row.lit;
        }
        for (int depth = 0; depth < row.lineWidth; ++depth) {
            const double left = (0.5 * 600 + 200.0 * 400) / (600.0 * 600 + 400 * 400); // along the diagonal
            const QColor line = over(Neon::violet, Neon::indigo, left);
            EXPECT_LE(
                distance(image.pixelColor(90 + depth, 90 + 200), over(Qt::black, line, row.lineOpacity)), 2);
        }
        EXPECT_EQ(image.pixelColor(90 + 4, 90 + 200), QColor(Qt::black)) << "no light inside";
    }
}

TEST_F(LightTest, DarkensTheCardsGround) {
    showOn(Qt::white, "Card", {{"lit", false}}, {600, 400});
    const QImage image = grab();
    EXPECT_LE(distance(image.pixelColor(60 + 300, 60 + 200), over(Qt::white, Qt::black, 0.42)), 1);
    // A corner of radius 18 leaves the point (5, 5) outside, and takes (6, 6) in.
    EXPECT_GT(image.pixelColor(60 + 4, 60 + 4).green(), 200);
    EXPECT_LT(image.pixelColor(60 + 7, 60 + 7).green(), 160);
}

TEST_F(LightTest, GlowsBelowTheFilledPartOfTheProgress) {
    showOn(Qt::black, "ProgressCapsule", {{"progress", 0.5}}, {420, 5});
    const QImage image = grab();
    for (const int away : {2, 6, 12}) {
        const double share = below(away + 0.5 + 5, 8) - below(away + 0.5, 8);
        EXPECT_LE(
            distance(image.pixelColor(60 + 105, 60 + 5 + away), over(Qt::black, Neon::violet, 0.7 * share)),
            2)
            << away;
    }
    EXPECT_LE(distance(image.pixelColor(60 + 380, 60 + 2), over(Qt::black, Qt::white, 0.06)), 1)
        << "the track";
}

/// How much of the pixel each pixel of `image` is covered, row by row.
std::vector<double> coverage(const QImage& image) {
    std::vector<double> values;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            values.push_back(image.pixelColor(x, y).alphaF());
        }
    }
    return values;
}

TEST_F(LightTest, LetsTextGlowTwice) {
    const auto* text = showOn<PaintedGlowText>(Qt::black, "GlowText", {{"text", "01:37"}, {"size", 76}});
    ASSERT_NE(text, nullptr);
    const QImage image = grab();
    QImage letters(image.size(), QImage::Format_ARGB32_Premultiplied);
    letters.fill(Qt::transparent);
    QPainter painter(&letters);
    painter.setFont(text->style().font());
    painter.drawText(QPointF(60, 60 + text->style().baseline()), "01:37");
    painter.end();
    const std::vector<double> mask = coverage(letters);
    for (const QPoint& at :
         {QPoint(60 - 8, 100), QPoint(60 + 100, 60), QPoint(60 + 30, 60 + 84), QPoint(30, 40)}) {
        ASSERT_EQ(letters.pixelColor(at).alpha(), 0);
        double light = 0;
        for (int y = 0; y < letters.height(); ++y) {
            for (int x = 0; x < letters.width(); ++x) {
                const double square = std::pow(x - at.x(), 2) + std::pow(y - at.y(), 2);
                light += mask[pixelIndex(x, y, letters.width())] * std::exp(-square / (2 * 12.16 * 12.16)) /
                         (2 * 3.14159265 * 12.16 * 12.16);
            }
        }
        const QColor once = over(Qt::black, Neon::violet, 0.85 * light);
        EXPECT_LE(distance(image.pixelColor(at), over(once, Neon::violet, 0.85 * light)), 3)
            << at.x() << " " << at.y();
    }
}

TEST_F(LightTest, RunsFromVioletToIndigoThroughGlowingText) {
    showOn(Qt::black, "GlowText", {{"text", "HHHH"}, {"size", 76}});
    const QImage image = grab();
    const auto solid = [&](int from, int step) {
        int x = from;
        while (image.pixelColor(x, 60 + 46).blue() < 250) {
            x += step;
        }
        return image.pixelColor(x + 3 * step, 60 + 46);
    };
    EXPECT_LE(distance(solid(60, 1), Neon::violet), 8);
    EXPECT_LE(distance(solid(image.width() - 60, -1), Neon::indigo), 8);
}

TEST_F(LightTest, DrawsTheEmblemsCirclesAsStrongAsDesigned) {
    for (const double magnification : {1.0, 1.08}) {
        showOn(Qt::black, "DropEmblem", {{"magnification", magnification}});
        const QImage image = grab();
        const QPoint middle(60 + 48, 60 + 48);
        double inner = 0;
        for (int x = -44; x < -34; ++x) {
            inner += image.pixelColor(middle.x() + x, middle.y()).blueF();
        }
        EXPECT_NEAR(inner, 0.22 * magnification, 0.02) << "a line one point wide";
        double outermost = 0;
        for (int x = 0; x < image.width(); ++x) {
            for (int y = 0; y < image.height(); ++y) {
                const double radius = std::hypot(x + 0.5 - middle.x(), y + 0.5 - middle.y());
                if (image.pixelColor(x, y).blue() > 20) {
                    outermost = std::max(outermost, radius);
                }
            }
        }
        EXPECT_NEAR(outermost, 48.75 * magnification, 0.8);
    }
}

TEST_F(LightTest, ColoursTheEmblemsSymbolFromTopToBottom) {
    showOn(Qt::black, "DropEmblem", {});
    const QImage image = grab();
    int top = 0;
    int bottom = 0;
    for (int y = 60 + 28; y < 60 + 68; ++y) { // the highest stroke, second to the left of the middle
        for (int x = 60 + 38; x < 60 + 48; ++x) {
            if (image.pixelColor(x, y).blue() > 200) {
                top = top == 0 ? image.pixelColor(x, y).red() : top;
                bottom = image.pixelColor(x, y).red();
            }
        }
    }
    EXPECT_GT(top, bottom + 30) << "violet above, indigo below";
}

TEST_F(LightTest, DrawsTheLastRibbonFaintest) {
    RibbonSet ribbons = RibbonSet::at({800, 400}, 1, 812'000'000);
    for (RibbonCurve& curve : ribbons.curves) {
        if (&curve != &ribbons.curves.back()) {
            curve.ribbon.violetOpacity = 0;
            curve.ribbon.indigoOpacity = 0;
        }
    }
    constexpr double scale = 4; // so that the stroke fills whole pixels
    RibbonImage drawn;
    drawn.draw(ribbons, scale);
    const auto opacityAt = [&](double x) {
        const double y = ribbons.curves.back().at(x).y - drawn.area().top();
        return drawn.image().pixelColor(static_cast<int>(x * scale), static_cast<int>(y * scale)).alphaF();
    };
    const auto withGlow = [](double stroke) { return stroke + (1 - stroke) * stroke * 1.3 / (14 * 2.5066); };
    EXPECT_NEAR(opacityAt(400), withGlow(0.32), 0.015);
    EXPECT_NEAR(opacityAt(200), withGlow((0.25 + 0.32) / 2), 0.015);
    EXPECT_NEAR(opacityAt(40), withGlow(0.25 * 0.9 + 0.32 * 0.1), 0.015);
}

} // namespace
} // namespace velmora::test
