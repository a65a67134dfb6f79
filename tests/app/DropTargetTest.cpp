#include "app/desktop/DropTarget.h"

#include "app/AppDelegate.h"

#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QWindow>

#include <gtest/gtest.h>

#include <memory>

namespace velmora::test {
namespace {

class DropTargetTest : public testing::Test {
protected:
    void SetUp() override {
        window = std::make_unique<QWindow>();
        const auto* target = new DropTarget(window.get());
        QObject::connect(target, &DropTarget::hovered, [this](bool hovering) { hovers.push_back(hovering); });
        QObject::connect(target, &DropTarget::dropped,
                         [this](const Paths& paths) { drops.push_back(paths); });
    }

    /// Drags `data` over the window; whether it would be taken.
    bool enter(const QMimeData& data) {
        QDragEnterEvent event({10, 10}, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(window.get(), &event);
        return event.isAccepted();
    }

    /// Goes on dragging `data`; whether it would be taken.
    bool move(const QMimeData& data) {
        QDragMoveEvent event({20, 10}, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(window.get(), &event);
        return event.isAccepted();
    }

    /// Drops `data`; whether it was taken, and as a copy.
    bool drop(const QMimeData& data) {
        QDropEvent event({10, 10}, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(window.get(), &event);
        return event.isAccepted() && event.dropAction() == Qt::CopyAction;
    }

    static std::unique_ptr<QMimeData> uriList(const QByteArray& list) {
        auto data = std::make_unique<QMimeData>();
        data->setData("text/uri-list", list);
        return data;
    }

    std::unique_ptr<QWindow> window;
    std::vector<bool> hovers;
    std::vector<Paths> drops;
};

TEST_F(DropTargetTest, IsOneScanOfEverythingDropped) {
    EXPECT_TRUE(drop(*uriList("file:///m/a.wav\r\nfile:///m/b%20c.wav\r\nfile:///m/d\r\nfile:///m/%E9\r\n")));
    EXPECT_EQ(drops, std::vector<Paths>({{"/m/a.wav", "/m/b c.wav", "/m/d", "/m/\xE9"}}));
}

TEST_F(DropTargetTest, StartsNothingWithoutAFileUrl) {
    QMimeData text;
    text.setText("hello");
    EXPECT_TRUE(drop(text)) << "a drop is always accepted";
    EXPECT_TRUE(drop(*uriList("https://x.example/picture.png\r\n")));
    EXPECT_EQ(drops, std::vector<Paths>());
}

TEST_F(DropTargetTest, HoversWhileFilesAreOverTheWindow) {
    const auto files = uriList("file:///m/a.wav\r\n");
    EXPECT_TRUE(enter(*files));
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(window.get(), &leave);
    EXPECT_EQ(hovers, (std::vector<bool>{true, false}));
    enter(*files);
    drop(*files);
    EXPECT_FALSE(hovers.back());
}

TEST_F(DropTargetTest, DoesNotHoverForOtherDrags) {
    QMimeData text;
    text.setText("hello");
    EXPECT_FALSE(enter(text));
    EXPECT_FALSE(move(text));
    EXPECT_FALSE(enter(*uriList("# a page\r\nhttp://x.example/a.wav\r\nfile://elsewhere.example/a.wav\r\n")));
    EXPECT_EQ(hovers, (std::vector<bool>{false, false}));
}

TEST_F(DropTargetTest, HoversForFilesAmongOtherUrls) {
    const auto mixed = uriList("http://x.example/a.wav\r\nfile:///m/a.wav\r\n");
    EXPECT_TRUE(enter(*mixed));
    EXPECT_TRUE(move(*mixed));
    EXPECT_EQ(hovers, std::vector<bool>{true});
}

TEST_F(DropTargetTest, HoversForWhatIsNotHandedOutBeforeTheDrop) {
    EXPECT_TRUE(enter(*uriList("")));
    QMimeData confined;
    confined.setData("application/vnd.portal.filetransfer", "key");
    EXPECT_TRUE(enter(confined));
}

/// Counts how often it is asked for its URLs.
class CountingData : public QMimeData {
public:
    mutable int fetched = 0;

protected:
    QVariant retrieveData(const QString& format, QMetaType type) const override {
        ++fetched;
        return QMimeData::retrieveData(format, type);
    }
};

TEST_F(DropTargetTest, FetchesTheUrlsOnceHoweverFarTheDragMoves) {
    CountingData data;
    data.setData("text/uri-list", "file:///m/a.wav\r\n");
    EXPECT_TRUE(enter(data));
    const int fetched = data.fetched;
    EXPECT_GT(fetched, 0);
    EXPECT_TRUE(move(data));
    EXPECT_TRUE(move(data));
    EXPECT_EQ(data.fetched, fetched);
}

TEST(AppDelegate, KeepsFilesUntilTheWindowTakesThem) {
    AppDelegate delegate;
    std::vector<Paths> announced;
    QObject::connect(&delegate, &AppDelegate::openURLs,
                     [&](const Paths& paths) { announced.push_back(paths); });
    delegate.open({"/m/old.wav"});
    delegate.open({"/m/new.wav"});
    EXPECT_EQ(announced, (std::vector<Paths>{{"/m/old.wav"}, {"/m/new.wav"}}));
    EXPECT_EQ(delegate.takePending(), Paths{"/m/new.wav"}) << "the last ones replace those before";
    EXPECT_EQ(delegate.takePending(), Paths());
}

} // namespace
} // namespace velmora::test
