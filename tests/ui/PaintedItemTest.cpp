// When painted items are measured and painted.

#include "ui/kit/PaintedItem.h"

#include "tests/ui/UiTest.h"
#include "ui/kit/PaintedText.h"

#include <QPainter>
#include <QQmlComponent>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace velmora::test {
namespace {

/// Counts how often it is measured and painted.
class CountedItem : public PaintedItem {
public:
    using PaintedItem::classBegin;
    using PaintedItem::componentComplete;
    using PaintedItem::PaintedItem;

    int measured = 0;
    mutable int painted = 0;

protected:
    void measure() override { ++measured; }

    void paint(QPainter& painter) const override {
        ++painted;
        painter.fillRect(QRectF(0, 0, width(), height()), Qt::white);
    }
};

class PaintedItemTest : public UiTest {
protected:
    CountedItem* shown(QQuickItem* parent) {
        auto* const item = new CountedItem(parent);
        item->setSize({20, 10});
        return item;
    }
};

TEST_F(PaintedItemTest, ArePaintedWhenTheyAreFirstSeen) {
    QQuickItem* const parent = show("NeonButton", {{"title", "ZIP"}, {"tint", QColor(Qt::white)}});
    CountedItem* const seen = shown(parent);
    CountedItem* const hidden = shown(parent);
    hidden->setVisible(false);
    grab();
    EXPECT_EQ(seen->painted, 1);
    EXPECT_EQ(hidden->painted, 0);
    hidden->setVisible(true);
    grab();
    EXPECT_EQ(hidden->painted, 1);
    hidden->setVisible(false);
    emit hidden->changed();
    grab();
    EXPECT_EQ(hidden->painted, 1) << "not while nobody sees it";
    hidden->setVisible(true);
    grab();
    EXPECT_EQ(hidden->painted, 2);
    EXPECT_EQ(seen->painted, 1);
}

TEST_F(PaintedItemTest, AreMeasuredOnceTheyAreMadeAndAfterEachChange) {
    CountedItem item;
    item.classBegin();
    emit item.changed();
    emit item.changed();
    EXPECT_EQ(item.measured, 0);
    item.componentComplete();
    EXPECT_EQ(item.measured, 1);
    emit item.changed();
    EXPECT_EQ(item.measured, 2);
}

TEST_F(PaintedItemTest, HaveTheSizeOfTheirText) {
    QQmlComponent component(&engine());
    component.setData("import Velmora; PaintedText { text: \"ZIP\"; size: 20; weight: 700 }", {});
    const std::unique_ptr<QObject> object(component.create());
    auto* const text = qobject_cast<PaintedText*>(object.get());
    ASSERT_NE(text, nullptr) << component.errorString().toStdString();
    const double width = text->implicitWidth();
    EXPECT_EQ(width, std::ceil(text->style().width("ZIP")));
    text->setSize(40);
    EXPECT_EQ(text->implicitWidth(), std::ceil(text->style().width("ZIP")));
    EXPECT_GT(text->implicitWidth(), width);
}

} // namespace
} // namespace velmora::test
