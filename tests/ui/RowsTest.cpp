// The lists of the details: what is in them, their order, what is selected and copied.

#include "scan/ScanModel.h"
#include "tests/staged/SampleDetails.h"
#include "tests/support/ComesTrue.h"
#include "ui/content/ScanState.h"
#include "ui/details/Details.h"
#include "ui/details/ScanRows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The texts of a row, from `rows` or a model, with " | " between them.
std::string line(const Rows& rows, std::size_t row) {
    QStringList cells;
    for (std::size_t column = 0; column < rows.columns().size(); ++column) {
        cells << rows.cell(row, column);
    }
    return cells.join(" | ").toStdString();
}

std::string line(const RowsModel& model, int row) {
    return model.data(model.index(row), RowsModel::cellsRole).toStringList().join(" | ").toStdString();
}

std::vector<std::string> names(const Rows& rows, const RowOrder& order) {
    std::vector<std::string> names;
    const std::optional<RowNumbers> numbers = ordered(rows, order, {});
    for (const std::uint32_t number : numbers.value_or(RowNumbers())) {
        names.push_back(rows.cell(number, 0).toStdString());
    }
    return names;
}

/// The files `found`, in scan order.
std::unique_ptr<const Rows> filesOf(std::vector<Measured> found) {
    return fileRows(sampleOf({.files = std::move(found)}, {"/m"}).details)();
}

TEST(Rows, NameEachFileWhereTheUserKnowsIt) {
    ScanDetails found;
    found.files = {{"/m/a.wav", 228.4, 1'500'000},
                   {"/tmp/x/Disc 1/\tcaf\xE9.wav", 3, 0},
                   {"/m/broken.m4a", unmeasured, 10, Reason::cutOff}};
    found.archiveOf = {{"/tmp/x", "/tmp/y/in.tar"}, {"/tmp/y", "/m/set.zip"}};
    const std::unique_ptr<const Rows> rows = fileRows(sampleOf(found, {"/m"}).details)();
    EXPECT_EQ(line(*rows, 0), "a.wav | /m | 00:03:48 | 1.5 MB");
    EXPECT_EQ(line(*rows, 1), "\uFFFDcaf\uFFFD.wav | /m/set.zip/in.tar/Disc 1 | 00:00:03 | Zero KB");
    EXPECT_EQ(line(*rows, 2), "broken.m4a | /m | \u2013 | 10 bytes");
    EXPECT_EQ(rows->name(1), "/m/set.zip/in.tar/Disc 1/\tcaf\xE9.wav");
    EXPECT_EQ(rows->place(0), "/m/a.wav");
    EXPECT_EQ(rows->place(1), "/m/set.zip") << "no file manager can show what is in it";
    EXPECT_FALSE(rows->isMissing(0));
    EXPECT_TRUE(rows->isMissing(2));
}

TEST(Rows, SayWhyEachThingCouldNotBeRead) {
    const auto rows = missingRows(sampleDetails().details)();
    ASSERT_EQ(rows->size(), 5U);
    EXPECT_EQ(line(*rows, 0), "private | /home/ann/Field Recordings | Permission denied");
    EXPECT_EQ(line(*rows, 1), "Secret.7z | /home/ann/Field Recordings | archive is encrypted");
    EXPECT_EQ(line(*rows, 2), "set.zip | /home/ann/Field Recordings | archive is damaged");
    EXPECT_EQ(line(*rows, 3), "broken.m4a | /home/ann/Field Recordings/Market | cut off inside its header");
    EXPECT_EQ(line(*rows, 4),
              "02 Silence.wav | /home/ann/Field Recordings/Live set.zip/Disc 1 | no audio frames");
    EXPECT_EQ(rows->place(4), "/home/ann/Field Recordings/Live set.zip");
}

TEST(Rows, AddUpEachFolderWithAllBelowIt) {
    const auto [found, summary] = sampleDetails();
    const auto rows = folderRows(found, summary.dropped)();
    ASSERT_EQ(rows->size(), 5U);
    EXPECT_EQ(line(*rows, 0), "Field Recordings | /home/ann | 04:42:12 | 29");
    EXPECT_EQ(line(*rows, 4), "Disc 1 | /home/ann/Field Recordings/Live set.zip | 00:07:04 | 1");
    EXPECT_EQ(rows->depth(4), 2);
    EXPECT_EQ(rows->place(1), "/home/ann/Field Recordings/Harbour");
    EXPECT_EQ(rows->place(4), "/home/ann/Field Recordings/Live set.zip");
    const auto root = folderRows(sampleOf({.files = {{"/1.wav", 1}}}, {"/1.wav"}).details, {"/1.wav"})();
    EXPECT_EQ(line(*root, 0), "/ |  | 00:00:01 | 1");
}

TEST(RowOrder, PutsNamesAsAFileManagerDoes) {
    const auto rows = filesOf({{"/m/b/10.wav", 1}, {"/m/b/9.WAV", 1}, {"/m/a/É.wav", 1}, {"/m/a/e.wav", 1}});
    EXPECT_THAT(names(*rows, {}), ElementsAre("10.wav", "9.WAV", "É.wav", "e.wav"));
    EXPECT_THAT(names(*rows, {.column = 0}), ElementsAre("9.WAV", "10.wav", "e.wav", "É.wav"));
    EXPECT_THAT(names(*rows, {.column = 0, .descending = true}),
                ElementsAre("É.wav", "e.wav", "10.wav", "9.WAV"));
    EXPECT_THAT(names(*rows, {.column = 1}), ElementsAre("É.wav", "e.wav", "10.wav", "9.WAV"))
        << "in a folder the order of the scan stays";
}

TEST(RowOrder, PutsLengthsAndSizesByTheirValue) {
    const auto rows = filesOf({{"/m/a", 100, 5}, {"/m/b", unmeasured, 7}, {"/m/c", 20, 6}, {"/m/d", 100, 6}});
    EXPECT_THAT(names(*rows, {.column = 2, .descending = true}), ElementsAre("a", "d", "c", "b"));
    EXPECT_THAT(names(*rows, {.column = 2}), ElementsAre("b", "c", "a", "d"));
    EXPECT_THAT(names(*rows, {.column = 3}), ElementsAre("a", "c", "d", "b"));
}

TEST(RowOrder, FindsWhateverTheCase) {
    const auto rows =
        filesOf({{"/m/Étude 1.wav", 2}, {"/m/étude 2.wav", 1}, {"/m/x.wav", 3}, {"/ÉTUDE/y.wav", 0}});
    EXPECT_THAT(names(*rows, {.search = "éTUDE"}), ElementsAre("Étude 1.wav", "étude 2.wav", "y.wav"));
    EXPECT_THAT(names(*rows, {.column = 2, .search = "tude"}),
                ElementsAre("y.wav", "étude 2.wav", "Étude 1.wav"));
    EXPECT_THAT(names(*rows, {.search = "z"}), IsEmpty());
}

TEST(RowOrder, EndsWhenItIsToStop) {
    std::stop_source stop;
    stop.request_stop();
    const auto rows = filesOf({{"/m/a", 1}});
    EXPECT_FALSE(ordered(*rows, {.column = 0}, stop.get_token()));
    EXPECT_FALSE(ordered(*rows, {.column = 2}, stop.get_token()));
    EXPECT_FALSE(ordered(*rows, {.search = "a"}, stop.get_token()));
}

class RowsModelTest : public testing::Test {
protected:
    void SetUp() override {
        const SampleDetails sample = sampleOf({.files = {{"/m/b.wav", 60, 3},
                                                         {"/m/a\t.wav", 5, 2},
                                                         {"/m/c.wav", unmeasured, 1, Reason::noFrames},
                                                         {"/n/caf\xE9.wav", 7, 4}}},
                                              {"/m", "/n"});
        model.show(fileRows(sample.details));
        ASSERT_TRUE(comesTrue([this] { return model.count() == 4; }));
    }

    /// The first letters of the names, in the order that comes.
    std::string arranged(const std::function<void()>& change) {
        bool hasCome = false;
        const auto connection =
            QObject::connect(&model, &RowsModel::rearranged, &model, [&hasCome] { hasCome = true; });
        change();
        EXPECT_TRUE(comesTrue([&] { return hasCome; }));
        QObject::disconnect(connection);
        std::string letters;
        for (int row = 0; row < model.count(); ++row) {
            letters += line(model, row).front();
        }
        return letters;
    }

    std::string selected() const {
        std::string letters;
        for (int row = 0; row < model.count(); ++row) {
            if (model.data(model.index(row), RowsModel::selectedRole).toBool()) {
                letters += line(model, row).front();
            }
        }
        return letters;
    }

    RowsModel model;
};

TEST_F(RowsModelTest, SortsBothWaysAndBack) {
    EXPECT_EQ(arranged([this] { model.sortBy(0); }), "abcc");
    EXPECT_FALSE(model.descending());
    EXPECT_EQ(arranged([this] { model.sortBy(0); }), "ccba");
    EXPECT_TRUE(model.descending());
    EXPECT_EQ(arranged([this] { model.sortBy(0); }), "bacc");
    EXPECT_EQ(model.sortColumn(), -1);
    EXPECT_EQ(arranged([this] { model.sortBy(2); }), "bcac") << "the longest first";
    EXPECT_EQ(arranged([this] { model.sortBy(2); }), "cacb");
}

TEST_F(RowsModelTest, ShowsTheAnswerToTheLastQuestionAlone) {
    EXPECT_EQ(arranged([this] {
                  model.setSearch("caf");
                  model.setSearch("");
                  model.sortBy(3);
              }),
              "cbac");
    EXPECT_EQ(model.count(), 4);
}

TEST_F(RowsModelTest, SelectsRowsAndRangesOfThem) {
    EXPECT_EQ(model.current(), 0);
    model.select(1);
    EXPECT_EQ(selected(), "a");
    model.extendTo(3);
    EXPECT_EQ(selected(), "acc");
    model.extendTo(0);
    EXPECT_EQ(selected(), "ba") << "from where the selection began";
    model.toggle(3);
    model.toggle(1);
    EXPECT_EQ(selected(), "bc");
    EXPECT_EQ(model.selectedCount(), 2);
    EXPECT_EQ(arranged([this] { model.sortBy(0); }), "abcc");
    EXPECT_EQ(selected(), "bc") << "the same files as before";
    model.selectAll();
    EXPECT_EQ(model.selectedCount(), 4);
    EXPECT_EQ(arranged([this] { model.setSearch("M/"); }), "abc");
    EXPECT_EQ(model.selectedCount(), 0);
    EXPECT_EQ(model.countText(), "3 OF 4");
    model.select(7);
    model.extendTo(-1);
    EXPECT_EQ(selected(), "") << "there is no such row";
}

TEST_F(RowsModelTest, CopiesWhatIsSelectedOrAllThatIsShown) {
    QByteArray copied;
    QObject::connect(&model, &RowsModel::copied, &model, [&](const QByteArray& text) { copied = text; });
    model.toggle(0);
    model.toggle(3);
    model.copy();
    EXPECT_EQ(copied, "00:01:00\t/m/b.wav\n00:00:07\t/n/caf\xE9.wav");
    EXPECT_EQ(arranged([this] { model.setSearch("/m/"); }), "bac");
    model.copy();
    EXPECT_EQ(copied, "00:01:00\t/m/b.wav\n00:00:05\t/m/a\\t.wav\n\u2013\t/m/c.wav");
    EXPECT_EQ(model.placeOf(0), "/m/b.wav");
    EXPECT_EQ(model.placeOf(3), "");
}

TEST_F(RowsModelTest, FreesItsRowsWhenItShowsNothing) {
    model.selectAll();
    model.show({});
    EXPECT_EQ(model.count(), 0);
    EXPECT_EQ(model.total(), 0);
    EXPECT_EQ(model.selectedCount(), 0);
    EXPECT_EQ(model.current(), -1);
    EXPECT_THAT(model.columns(), IsEmpty());
}

TEST(DetailsOfAScan, CanBeOpenedAtItsEndAndCloseWithTheNext) {
    const auto gather = [](const PathList& dropped, const std::stop_token&, const Unpacking&) {
        GatherResult result;
        result.files = {dropped.begin(), PathList::end()};
        result.skippedArchives = {{"/m/set.zip", Reason::damaged}};
        return result;
    };
    const auto measure = [](const std::filesystem::path& path, const std::stop_token&) {
        return Measured{.url = path, .seconds = 3};
    };
    ScanModel model({gather, measure});
    Details details(model);
    details.openOn(Details::Files);
    EXPECT_FALSE(details.isOpen());
    model.ingest({"/m/a.wav"});
    EXPECT_TRUE(comesTrue([&] { return details.available(); }));
    EXPECT_EQ(model.phase(), ScanModel::Phase::done);
    EXPECT_EQ(details.lists().size(), 3);
    details.openOn(Details::Unreadable);
    EXPECT_TRUE(comesTrue([&] { return details.rows()->count() == 1; }));
    EXPECT_EQ(line(*details.rows(), 0), "set.zip | /m | archive is damaged");
    const std::weak_ptr<const ScanDetails> found = model.sharedDetails();
    model.ingest({"/m/b.wav"});
    EXPECT_FALSE(details.isOpen());
    EXPECT_FALSE(details.available());
    EXPECT_TRUE(comesTrue([&] { return found.expired(); })) << "nobody keeps what nobody shows";
}

TEST(DetailsOfAScan, TellWhatWasMissingWhereNothingWasFound) {
    const auto gather = [](const PathList&, const std::stop_token&, const Unpacking&) {
        GatherResult result;
        result.skippedArchives = {{"/m/set.zip", Reason::damaged}, {"/m/b.zip", Reason::encrypted}};
        return result;
    };
    ScanModel model({gather, {}});
    model.ingest({"/m"});
    EXPECT_EQ(ScanState::of(model).missing, "");
    EXPECT_TRUE(comesTrue([&] { return model.phase() == ScanModel::Phase::empty; }));
    EXPECT_EQ(ScanState::of(model).missing, "set.zip: archive is damaged");
}

TEST(DetailsOfAScan, OpenOnWhatThereIs) {
    Details details;
    const SampleDetails broken =
        sampleOf({.skippedArchives = {{"/m/set.zip", Reason::damaged}}}, {"/m/set.zip"});
    details.show(broken.details, broken.summary);
    details.openOn(Details::Files);
    EXPECT_EQ(details.list(), Details::Unreadable);
    EXPECT_THAT(details.chips(), IsEmpty());
    const SampleDetails sample = sampleDetails();
    details.show(sample.details, sample.summary);
    EXPECT_FALSE(details.isOpen());
    ASSERT_EQ(details.chips().size(), 6);
    EXPECT_TRUE(details.chips()[0].toMap()["label"].toString().startsWith("LONGEST \u00b7 Interview"));
    EXPECT_EQ(details.chips()[0].toMap()["value"], "01:37:12");
    EXPECT_EQ(details.chips()[1].toMap()["label"], "FLAC \u00b7 24");
    EXPECT_EQ(details.chips()[1].toMap()["value"], "02:49:48");
}

} // namespace
} // namespace velmora::test
