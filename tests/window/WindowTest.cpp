#include "tests/window/WindowTest.h"

#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <QCoreApplication>

#include <algorithm>

namespace velmora::test {

namespace {

/// The one application object of a test process: bus connections need it.
class Application : public testing::Environment {
public:
    void SetUp() override { m_application = std::make_unique<QCoreApplication>(m_count, m_arguments); }

    void TearDown() override { m_application.reset(); }

private:
    char m_name[5] = "test";
    char* m_arguments[2] = {m_name, nullptr};
    int m_count = 1;
    std::unique_ptr<QCoreApplication> m_application;
};

[[maybe_unused]] const testing::Environment* const application =
    testing::AddGlobalTestEnvironment(new Application);

std::string namesOf(const QList<Element>& elements) {
    QStringList names;
    for (const Element& element : elements) {
        names += element.role + " '" + element.name + "'";
    }
    return names.join(", ").toStdString();
}

} // namespace

WindowTest::WindowTest(Bus bus, Display display)
    : desktop(bus, display) {
    environment.insert("VELMORA_MANIFEST_URL", "http://127.0.0.1:9/"); // no server listens there
    // Qt warns when a screen reader asks about an item that has just been deleted.
    environment.insert("QT_LOGGING_RULES", "qt.accessibility.atspi*=false");
}

void WindowTest::TearDown() {
    EXPECT_EQ(velmora->errors().toStdString(), "");
}

std::unique_ptr<Process> WindowTest::start(const QStringList& arguments) {
    return std::make_unique<Process>(VELMORA, arguments, environment);
}

void WindowTest::open(const QStringList& arguments) {
    velmora = start(arguments);
    EXPECT_TRUE(comesTrue([this] { return !desktop.activeTitle().isEmpty(); }))
        << "its title tells its total";
    if (desktop.bus().isConnected()) {
        awaitShown("Menu");
    }
}

int WindowTest::startAgain(const QStringList& arguments) {
    return start(arguments)->wait();
}

QString WindowTest::tone(const fs::path& name, int seconds) const {
    constexpr int rate = 8000;
    return text(
        writeWav(folder / name, {.frames = std::int64_t{rate} * seconds, .rate = rate, .channels = 1}));
}

QString WindowTest::url(const fs::path& path) {
    return "file://" + QByteArray::fromStdString(path.native()).toPercentEncoding("/");
}

fs::path WindowTest::recordOpening() const {
    fs::path record = folder / "opened";
    const fs::path opener =
        write(desktop.programs() / "xdg-open",
              "#!/bin/sh\necho \"$1\" > " + shellWord(record.native() + "~") + " && mv " +
                  shellWord(record.native() + "~") + " " + shellWord(record.native()) + "\n");
    fs::permissions(opener, fs::perms::owner_all);
    return record;
}

Element WindowTest::awaitShown(const QString& name) const {
    std::optional<Element> element;
    EXPECT_TRUE(comesTrue([&] { return (element = reader.find(name)).has_value(); }))
        << "'" << name.toStdString() << "' is not shown, but " << namesOf(reader.shown());
    return element.value_or(Element{});
}

void WindowTest::awaitGone(const QString& name) const {
    EXPECT_TRUE(comesTrue([&] { return !reader.find(name); })) << name.toStdString();
}

void WindowTest::awaitActive(const QString& title) const {
    EXPECT_TRUE(comesTrue([&] { return desktop.activeTitle().startsWith(title); }))
        << "'" << title.toStdString() << "' has not the focus, but '" << desktop.activeTitle().toStdString();
}

void WindowTest::awaitClipboard(const QString& text) const {
    EXPECT_TRUE(comesTrue([&] { return desktop.clipboard() == text; }))
        << "on the clipboard is: " << desktop.clipboard().toStdString();
}

void WindowTest::click(const QString& name) const {
    desktop.click(awaitShown(name).place.center());
}

QRect WindowTest::window() const {
    for (const Element& element : reader.shown()) {
        if (element.role == "frame") {
            return element.place;
        }
    }
    return {};
}

} // namespace velmora::test
