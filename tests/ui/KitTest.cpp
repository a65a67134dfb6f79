#include "tests/ui/UiTest.h"
#include "ui/kit/DigitCells.h"
#include "ui/kit/Neon.h"
#include "ui/kit/PaintedGlowText.h"
#include "ui/kit/PaintedText.h"

#include <QQmlComponent>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <cmath>

namespace velmora::test {
namespace {

class KitTest : public UiTest {
protected:
    QQuickItem* showButton(bool enabled) {
        return show("NeonButton", {{"title", "ZIP"}, {"tint", Neon::violet}, {"enabled", enabled}});
    }

    /// The colour of the button's ground, beside its words.
    QColor ground() { return grab().pixelColor(6, 16); }
};

TEST_F(KitTest, HasNineColours) {
    EXPECT_EQ(Neon::bgTop, QColor::fromRgbF(0.055F, 0.035F, 0.11F));
    EXPECT_EQ(Neon::bgMid, QColor::fromRgbF(0.031F, 0.02F, 0.075F));
    EXPECT_EQ(Neon::bgBottom, QColor::fromRgbF(0.012F, 0.008F, 0.04F));
    EXPECT_EQ(Neon::violet, QColor::fromRgbF(0.66F, 0.36F, 1));
    EXPECT_EQ(Neon::indigo, QColor::fromRgbF(0.4F, 0.33F, 1));
    EXPECT_EQ(Neon::brand, QColor::fromRgbF(0.243F, 0.176F, 1));
    EXPECT_EQ(Neon::ink, QColor::fromRgbF(0.9F, 0.88F, 0.98F));
    EXPECT_EQ(Neon::inkDim, QColor::fromRgbF(0.55F, 0.5F, 0.75F));
    EXPECT_EQ(Neon::alert, QColor::fromRgbF(1, 0.541F, 0.31F));
}

TEST_F(KitTest, GivesQmlTheSamePalette) {
    QQmlComponent component(&engine());
    component.setData("import QtQuick; import Velmora; QtObject { property color c: Neon.alert }", {});
    const std::unique_ptr<QObject> object(component.create());
    ASSERT_NE(object, nullptr) << component.errorString().toStdString();
    EXPECT_EQ(object->property("c").value<QColor>(), Neon::alert);
}

TEST_F(KitTest, BlursAndTracksGlowingTextByItsSize) {
    PaintedGlowText text;
    text.setProperty("size", 76);
    EXPECT_DOUBLE_EQ(text.blurRadius(), 12.16);
    EXPECT_DOUBLE_EQ(text.style().tracking, 2.28);
    EXPECT_EQ(text.style().weight, QFont::Bold);
}

TEST_F(KitTest, KeepsEverythingInItsPlaceWhileGlowingDigitsCount) {
    const TextStyle style = PaintedGlowText().style();
    const auto starts = [&](const QString& text) {
        std::vector<double> all;
        for (const TextPiece& piece : inDigitCells(text, style).pieces) {
            const double middle = piece.x + (style.width(piece.text) + style.tracking) / 2;
            all.push_back(std::round(1000 * middle));
        }
        return all;
    };
    EXPECT_NE(style.width("1"), style.width("0")) << "the typeface's own digits differ in width";
    EXPECT_EQ(starts("01:11:11").size(), 8U);
    EXPECT_EQ(starts("01:11:11"), starts("97:48:05"));
    EXPECT_EQ(inDigitCells("1 / 48", style).width, inDigitCells("8 / 48", style).width);
    EXPECT_EQ(inDigitCells("READY", style).width, style.width("READY")) << "only digits are moved";
    PaintedGlowText one;
    PaintedGlowText eight;
    one.setProperty("text", "1");
    eight.setProperty("text", "8");
    EXPECT_EQ(one.implicitWidth(), eight.implicitWidth());
}

TEST_F(KitTest, PadsAButtonAroundItsTitle) {
    const QQuickItem* button = showButton(true);
    const auto* words = button->findChild<PaintedText*>();
    ASSERT_NE(words, nullptr);
    EXPECT_EQ(words->size(), 11);
    EXPECT_EQ(words->weight(), QFont::Bold);
    EXPECT_EQ(words->tracking(), 1.6);
    EXPECT_EQ(button->width(), words->width() + 2 * 18);
    EXPECT_EQ(button->height(), words->height() + 2 * 9);
}

TEST_F(KitTest, LightsAButtonUnderThePointer) {
    const QQuickItem* button = showButton(true);
    EXPECT_LE(distance(ground(), over(Qt::black, Neon::violet, 0.1)), 1);
    EXPECT_LE(distance(grab().pixelColor(0, 16), over(over(Qt::black, Neon::violet, 0.1), Neon::violet, 0.5)),
              1);
    hover(button);
    EXPECT_LE(distance(ground(), Neon::violet), 1);
    EXPECT_EQ(button->findChild<PaintedText*>()->color(), QColor(Qt::black));
}

TEST_F(KitTest, ShowsWhileAButtonIsHeldDown) {
    const QQuickItem* button = showButton(true);
    window->resize(200, 100); // with room beside the button
    hover(button);
    QTest::mousePress(window.get(), Qt::LeftButton, {}, place(button).center());
    EXPECT_LE(distance(ground(), over(Qt::black, Neon::violet, 0.7)), 1);
    QTest::mouseMove(window.get(), {150, 80}); // away: to release it there does nothing
    EXPECT_LE(distance(ground(), over(Qt::black, Neon::violet, 0.1)), 1);
    QTest::mouseMove(window.get(), place(button).center());
    QTest::mouseRelease(window.get(), Qt::LeftButton, {}, place(button).center());
    EXPECT_LE(distance(ground(), Neon::violet), 1);
}

TEST_F(KitTest, NeverLightsADisabledButton) {
    const QQuickItem* button = showButton(false);
    const QImage before = grab();
    hover(button);
    EXPECT_EQ(grab(), before);
    EXPECT_EQ(button->findChild<PaintedText*>()->color(), Neon::violet);
    EXPECT_EQ(button->opacity(), 0.4);
}

TEST_F(KitTest, IsPressedByPointerSpaceAndEnter) {
    const QQuickItem* button = showButton(true);
    const QSignalSpy pressed(button, SIGNAL(pressed()));
    click(button);
    EXPECT_EQ(pressed.count(), 1);
    QTest::keyClick(window.get(), Qt::Key_Tab);
    EXPECT_TRUE(button->hasActiveFocus());
    QTest::keyClick(window.get(), Qt::Key_Space);
    QTest::keyClick(window.get(), Qt::Key_Return);
    QTest::keyClick(window.get(), Qt::Key_Enter);
    EXPECT_EQ(pressed.count(), 4);
}

TEST_F(KitTest, IgnoresPressesOfADisabledButton) {
    const QQuickItem* button = showButton(false);
    const QSignalSpy pressed(button, SIGNAL(pressed()));
    click(button);
    QTest::keyClick(window.get(), Qt::Key_Tab);
    QTest::keyClick(window.get(), Qt::Key_Space);
    EXPECT_EQ(pressed.count(), 0);
    EXPECT_FALSE(button->hasActiveFocus());
}

TEST_F(KitTest, PadsAPillAroundItsText) {
    const QQuickItem* pill = show("NeonPill", {{"text", "READY"}, {"tint", Neon::violet}});
    const auto* words = pill->findChild<PaintedText*>();
    EXPECT_EQ(words->size(), 10);
    EXPECT_EQ(words->tracking(), 1.6);
    EXPECT_EQ(pill->width(), words->width() + 2 * 10);
    EXPECT_EQ(pill->height(), words->height() + 2 * 5);
    EXPECT_FALSE(pill->isEnabled()) << "it is no button";
    const QImage image = grab();
    EXPECT_LE(distance(image.pixelColor(7, image.height() / 2), over(Qt::black, Neon::violet, 0.1)), 1);
    EXPECT_LE(distance(image.pixelColor(image.width() / 2, 0),
                       over(over(Qt::black, Neon::violet, 0.1), Neon::violet, 0.45)),
              1);
    EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::black)) << "its ends are round";
}

TEST_F(KitTest, MakesAPillAButtonOnRequest) {
    const QQuickItem* pill = show("NeonPill", {{"text", "GO"}, {"tint", Neon::violet}, {"actionable", true}});
    const QSignalSpy pressed(pill, SIGNAL(pressed()));
    click(pill);
    EXPECT_EQ(pressed.count(), 1);
}

TEST_F(KitTest, SetsAChipsNameAboveItsValue) {
    const QQuickItem* chip = show("StatChip", {{"label", "FILES"}, {"value", "14"}, {"tint", Neon::indigo}});
    const QList<PaintedText*> rows = chip->findChildren<PaintedText*>();
    ASSERT_EQ(rows.size(), 2);
    EXPECT_EQ(rows[0]->size(), 9);
    EXPECT_EQ(rows[0]->color(), Neon::inkDim);
    EXPECT_EQ(rows[1]->size(), 15);
    EXPECT_EQ(rows[1]->weight(), QFont::DemiBold);
    EXPECT_EQ(place(rows[1]).top(), place(rows[0]).bottom() + 1 + 5);
    EXPECT_EQ(chip->height(), rows[0]->height() + 5 + rows[1]->height() + 2 * 11);
    EXPECT_EQ(chip->width(), std::max(rows[0]->width(), rows[1]->width()) + 2 * 14);
    EXPECT_EQ(rows[0]->tracking(), 1.5);
    EXPECT_EQ(rows[0]->weight(), QFont::Bold);
    EXPECT_EQ(rows[1]->color(), Neon::indigo);
    const QColor ground = over(Qt::black, Neon::ink, 0.028);
    EXPECT_LE(distance(grab().pixelColor(7, 20), ground), 1);
    EXPECT_LE(distance(grab().pixelColor(0, 20), over(ground, Neon::indigo, 0.22)), 1);
}

TEST_F(KitTest, ShowsTheMakersMarkWithALightAroundIt) {
    show("BrandLogo", {});
    const QImage image = grab();
    EXPECT_EQ(image.size(), QSize(54, 54));
    EXPECT_GT(image.pixelColor(27, 27).lightness(), 240) << "the middle stroke is white";
    for (const QPoint& edge : {QPoint(1, 27), QPoint(27, 1), QPoint(52, 28), QPoint(27, 52)}) {
        EXPECT_GT(image.pixelColor(edge).lightness(), 200) << "the ring fills the box";
    }
    EXPECT_GT(image.pixelColor(36, 36).blue(), image.pixelColor(36, 36).green()) << "the shadow is violet";
}

TEST_F(KitTest, LeavesTheSpaceEmptyWhenTheMarkIsMissing) {
    const QQuickItem* logo = show("BrandLogo", {{"source", ":/no/such/image.png"}});
    EXPECT_EQ(logo->width(), 54);
    QImage empty(54, 54, grab().format());
    empty.fill(Qt::black);
    EXPECT_EQ(grab(), empty);
}

TEST_F(KitTest, EndsTextThatIsTooLongInAnEllipsis) {
    auto* const text =
        show<PaintedText>("Caption", {{"text", "A VERY LONG NAME OF A VERY LONG RECORDING"}}, {60, 20});
    ASSERT_NE(text, nullptr);
    EXPECT_GT(text->implicitWidth(), 200);
    EXPECT_LT(text->style().width(text->shownText()), 60);
    EXPECT_TRUE(text->shownText().startsWith("A") && text->shownText().endsWith(QChar(0x2026)));
    text->setProperty("keepsEnd", true);
    EXPECT_LT(text->style().width(text->shownText()), 60);
    EXPECT_TRUE(text->shownText().startsWith("A") && text->shownText().endsWith("G"));
}

} // namespace
} // namespace velmora::test
