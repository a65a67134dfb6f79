#include "tests/ui/UiTest.h"

#include "tests/staged/StagedWindow.h"

#include <QQmlComponent>
#include <QTest>

#include <algorithm>
#include <iterator>

namespace velmora::test {

namespace {

QStringList& warnings() {
    static QStringList list;
    return list;
}

void keepWarnings(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message) {
    // What Qt says of a typeface whose place the system's font of that script takes.
    const bool ofScript = message.contains(QLatin1String("OpenType support missing"));
    if (type != QtDebugMsg && type != QtInfoMsg && !ofScript) {
        warnings() << message;
    }
}

} // namespace

void UiTest::SetUp() {
    qInstallMessageHandler(&keepWarnings);
    warnings().clear();
    m_engine = std::make_unique<QQmlEngine>();
}

void UiTest::TearDown() {
    window.reset();
    m_engine.reset();
    qInstallMessageHandler(nullptr);
    EXPECT_EQ(warnings().join('\n').toStdString(), "");
}

QQuickItem* UiTest::showItem(const char* name, const QVariantMap& properties, const QSize& points) {
    QQmlComponent component(m_engine.get());
    component.setData("import Velmora\n" + QByteArray(name) + " {}", {});
    auto* const item = qobject_cast<QQuickItem*>(component.createWithInitialProperties(properties));
    if (item == nullptr) {
        ADD_FAILURE() << component.errorString().toStdString();
        return nullptr;
    }
    if (points.isValid()) {
        item->setSize(points);
    }
    window = std::make_unique<QQuickWindow>();
    window->setColor(Qt::black);
    item->setParent(window.get());
    item->setParentItem(window->contentItem());
    window->resize(item->size().toSize());
    window->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(window.get(), patience));
    QEvent leave(QEvent::Leave); // where the pointer was left by an earlier test
    QCoreApplication::sendEvent(window.get(), &leave);
    return item;
}

QQuickItem* UiTest::showContent(const QSize& points) {
    return show("ContentView",
                {{"scan", QVariant::fromValue(&scan)},
                 {"actions", QVariant::fromValue<Actions*>(&actions)},
                 {"time", 812'000'000.0},
                 {"animated", false}},
                points);
}

void UiTest::showState(const ScanState& state, const QSize& points) {
    scan.show(state);
    showContent(points);
}

void UiTest::openWindow(bool animated) {
    window = stageWindow(*m_engine, scan, actions, alerts, animated, &details);
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get(), patience));
}

void UiTest::press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    QTest::keyClick(window.get(), key, modifiers);
}

QImage UiTest::grab() {
    return window->grabWindow();
}

QQuickItem* UiTest::find(const char* objectName) {
    auto* const item = window->findChild<QQuickItem*>(objectName);
    EXPECT_NE(item, nullptr) << objectName;
    return item;
}

QList<QQuickItem*> UiTest::shown() const {
    QList<QQuickItem*> items = {window->contentItem()};
    for (qsizetype i = 0; i < items.size(); ++i) {
        const QList<QQuickItem*> children = items[i]->childItems();
        std::ranges::copy_if(children, std::back_inserter(items), &QQuickItem::isVisible);
    }
    return items;
}

QQuickItem* UiTest::labelled(const char* property, const QString& value) const {
    const QList<QQuickItem*> items = shown();
    const auto found = std::ranges::find_if(
        items, [&](const QQuickItem* item) { return item->property(property).toString() == value; });
    return found == items.end() ? nullptr : *found;
}

QList<QQuickItem*> UiTest::itemsNamed(const char* name) const {
    QList<QQuickItem*> items = shown();
    items.removeIf([name](const QQuickItem* item) { return item->objectName() != name; });
    return items;
}

QRect UiTest::place(const QQuickItem* item) {
    return item->mapRectToScene(QRectF({}, item->size())).toRect();
}

void UiTest::hover(const QQuickItem* item) {
    QTest::mouseMove(window.get(), place(item).center());
    QTest::qWait(1);
}

void UiTest::hoverNothing() {
    QTest::mouseMove(window.get(), QPoint(1, 1));
    QTest::qWait(1);
}

void UiTest::click(const QQuickItem* item) {
    QTest::mouseClick(window.get(), Qt::LeftButton, {}, place(item).center());
}

std::size_t pixelIndex(int x, int y, int width) {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
}

int distance(const QColor& a, const QColor& b) {
    return std::max(
        {std::abs(a.red() - b.red()), std::abs(a.green() - b.green()), std::abs(a.blue() - b.blue())});
}

QColor over(const QColor& below, const QColor& above, double opacity) {
    const auto mix = [opacity](double under, double top) {
        return static_cast<float>(under + (top - under) * opacity);
    };
    return QColor::fromRgbF(mix(below.redF(), above.redF()), mix(below.greenF(), above.greenF()),
                            mix(below.blueF(), above.blueF()));
}

} // namespace velmora::test
