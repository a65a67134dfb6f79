// The details of very many files: what is made of them, and that the answers are right.

#include "tests/staged/SampleDetails.h"
#include "tests/ui/UiTest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace velmora::test {
namespace {

class ManyRowsTest : public UiTest {
protected:
    void awaitRows(int count) {
        EXPECT_TRUE(comesTrue([&] { return details.rows()->count() == count; })) << details.rows()->count();
        EXPECT_TRUE(comesTrue([&] { return !itemsNamed("detailsLine").isEmpty(); }));
    }
};

TEST_F(ManyRowsTest, MakesNoMoreThanAreSeen) {
    constexpr int count = 300'000;
    std::vector<Measured> files;
    files.reserve(count);
    for (int i = 0; i < count; ++i) {
        files.push_back({"/" + std::to_string(i) + ".wav", static_cast<double>((i + 7) % 1000), i});
    }
    const SampleDetails sample = sampleOf({.files = std::move(files)}, {"/"});
    details.show(sample.details, sample.summary);
    openWindow();
    details.openOn(Details::Files);
    awaitRows(count);

    std::set<QQuickItem*> known;
    const auto look = [&] {
        for (QQuickItem* line : itemsNamed("detailsLine")) {
            known.insert(line);
        }
    };
    look();
    const std::size_t screenful = known.size();
    const auto gone = std::make_shared<int>(0); // some are destroyed after this test
    for (QQuickItem* line : known) {
        QObject::connect(line, &QObject::destroyed, line, [gone] { ++*gone; });
    }
    for (int page = 0; page < 40; ++page) {
        press(Qt::Key_PageDown);
        look();
    }
    press(Qt::Key_End);
    look();
    EXPECT_TRUE(std::ranges::any_of(
        known, [](const QQuickItem* line) { return line->property("index") == count - 1; }));
    EXPECT_EQ(*gone, 0);
    EXPECT_LE(known.size(), 2 * screenful + 4);

    const auto cell = [this](int row, int column) {
        return details.rows()
            ->data(details.rows()->index(row), RowsModel::cellsRole)
            .toStringList()
            .value(column)
            .toStdString();
    };
    details.rows()->sortBy(2);
    EXPECT_TRUE(comesTrue([&] { return cell(0, 0) == "992.wav"; })) << "the first that plays longest";
    EXPECT_EQ(cell(count - 1, 0), "299993.wav");
    details.rows()->setSearch("99999");
    awaitRows(3);
    EXPECT_EQ(cell(0, 0) + " " + cell(1, 0) + " " + cell(2, 0), "99999.wav 199999.wav 299999.wav");
    details.rows()->setSearch("");
    awaitRows(count);
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(actions.copied, "") << "the window does not wait for it";
    EXPECT_TRUE(comesTrue([&] { return actions.copied.count('\n') == count - 1; }));
    EXPECT_TRUE(actions.copied.startsWith("00:16:39\t/992.wav\n")) << actions.copied.left(40).toStdString();
    look();
    EXPECT_LE(known.size(), 4 * screenful);
}

} // namespace
} // namespace velmora::test
