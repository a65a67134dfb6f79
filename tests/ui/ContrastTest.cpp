// More contrast, for those who have asked their desktop for it.

#include "tests/staged/StagedWindow.h"
#include "tests/ui/UiTest.h"
#include "ui/kit/Neon.h"
#include "ui/kit/PaintedText.h"
#include "ui/panel/FilePanel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace velmora::test {
namespace {

/// How light a colour looks, from 0 to 1: WCAG 2.1, "relative luminance".
double luminance(const QColor& color) {
    const auto linear = [](double channel) {
        return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

/// The contrast of two colours, from 1 to 21: WCAG 2.1, "contrast ratio".
double contrast(const QColor& a, const QColor& b) {
    const auto [dark, light] = std::minmax(luminance(a), luminance(b));
    return (light + 0.05) / (dark + 0.05);
}

class ContrastTest : public UiTest {
protected:
    QColor colorOf(const char* caption) { return qobject_cast<PaintedText*>(find(caption))->color(); }

    /// The colour of the item's left edge, at half its height.
    QColor edgeOf(const char* name) {
        const QRect box = place(find(name));
        return grab().pixelColor(box.left(), box.center().y());
    }
};

TEST_F(ContrastTest, LiftsSecondaryTextAndBordersOnRequest) {
    scan.show(done);
    openWindow();
    const QImage usual = grab();
    EXPECT_EQ(colorOf("brandLine"), Neon::inkDim);
    const int button = edgeOf("resetButton").lightness();
    const int card = edgeOf("card").lightness();
    window->setProperty("highContrast", true);
    EXPECT_GE(contrast(colorOf("brandLine"), Neon::bgTop), 7) << "what WCAG calls enhanced";
    EXPECT_EQ(colorOf("totalLabel"), colorOf("brandLine"));
    EXPECT_GT(edgeOf("resetButton").lightness(), button + 40);
    EXPECT_GT(edgeOf("card").lightness(), card + 40);
    window->setProperty("highContrast", false);
    EXPECT_EQ(grab(), usual);
}

TEST_F(ContrastTest, LiftsTheWordsOfTheFirstPhase) {
    openWindow();
    EXPECT_EQ(find("phasePill")->property("tint").value<QColor>(), Neon::inkDim);
    window->setProperty("highContrast", true);
    EXPECT_GE(contrast(find("phasePill")->property("tint").value<QColor>(), Neon::bgTop), 7);
}

TEST_F(ContrastTest, LiftsTheBordersOfThePanel) {
    openWindow();
    panelOf(*window).ask({.message = "Choose", .prompt = "Measure", .folders = {"/music"}});
    ASSERT_TRUE(comesTrue([this] { return find("fileTable") != nullptr; }));
    const int usual = edgeOf("fileTable").lightness();
    window->setProperty("highContrast", true);
    EXPECT_GT(edgeOf("fileTable").lightness(), usual + 40);
    window->setProperty("highContrast", false);
    EXPECT_EQ(edgeOf("fileTable").lightness(), usual);
}

} // namespace
} // namespace velmora::test
