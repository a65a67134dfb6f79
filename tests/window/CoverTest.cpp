// The window as the X server and its other clients see it.

#include "tests/window/WindowTest.h"
#include "tests/window/XClient.h"

#include <QCoreApplication>

namespace velmora::test {
namespace {

class CoverTest : public WindowTest {
protected:
    void SetUp() override {
        environment.insert("QT_LOGGING_RULES", // a line a frame
                           environment.value("QT_LOGGING_RULES") + ";qt.scenegraph.time.renderloop=true");
        open();
        server = std::make_unique<XClient>(desktop.environment().value("DISPLAY").toLatin1());
    }

    void TearDown() override {} // there are lines on standard error

    bool drawsFrames() {
        frames();
        return comesTrue([this] { return frames() > 0; });
    }

    /// How many frames it has told of since last asked.
    qsizetype frames() {
        QCoreApplication::processEvents(); // which reads what it wrote
        return velmora->errors().count("Frame rendered");
    }

    /// Whether it comes to draw nothing, while it answers the screen reader's many questions.
    bool rests() {
        return comesTrue([this] {
            frames();
            for (int i = 0; i < 5; ++i) {
                reader.shown();
            }
            return frames() == 0;
        });
    }

    std::uint32_t id() const {
        return run("xdotool", {"getactivewindow"}, desktop.environment()).trimmed().toUInt();
    }

    std::unique_ptr<XClient> server;
};

TEST_F(CoverTest, CoveredAsAWholeItIsNotDrawn) {
    EXPECT_TRUE(drawsFrames());
    server->cover(window().adjusted(0, 0, 0, -40));
    EXPECT_TRUE(drawsFrames()) << "a part of it is seen";
    server->uncover();
    server->cover(window());
    EXPECT_TRUE(rests());
    server->uncover();
    EXPECT_TRUE(drawsFrames());
}

TEST_F(CoverTest, HiddenByTheWindowManagerItIsNotDrawn) {
    server->setHidden(id(), true);
    EXPECT_TRUE(rests());
    server->setHidden(id(), false);
    EXPECT_TRUE(drawsFrames());
    desktop.minimise();
    EXPECT_TRUE(rests());
}

TEST_F(CoverTest, HasAnIcon) {
    constexpr std::uint32_t header = 2; // width and height before each picture
    constexpr std::uint32_t pictures = 16 * 16 + 32 * 32 + 48 * 48 + 64 * 64 + 128 * 128;
    EXPECT_EQ(server->lengthOf("_NET_WM_ICON", id()), 4 * (pictures + 5 * header));
}

} // namespace
} // namespace velmora::test
