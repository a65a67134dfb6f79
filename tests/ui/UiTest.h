#pragma once

// What tests of views share: an application without a display, views in windows; every warning is a failure.

#include "tests/staged/RecordingActions.h"
#include "tests/support/ComesTrue.h"
#include "ui/content/ScanView.h"
#include "ui/details/Details.h"
#include "ui/window/Alerts.h"

#include <QImage>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QVariantMap>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace velmora::test {

/// Needs no display and no GPU. A warning of Qt or QML during a test is a failure.
class UiTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    /// Shows the view of that name in a window as large as the view asks for, or as `points` says.
    template <typename Item = QQuickItem>
    Item* show(const char* name, const QVariantMap& properties, const QSize& points = {}) {
        return qobject_cast<Item*>(showItem(name, properties, points));
    }

    /// The whole content, showing `scan`.
    QQuickItem* showContent(const QSize& points = {940, 700});

    /// The whole content, showing `state`.
    void showState(const ScanState& state, const QSize& points = {940, 700});

    /// The program's window on `scan`, with the focus.
    void openWindow(bool animated = false);

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {});

    /// What the window shows, at one pixel a point.
    QImage grab();

    /// The item of that object name; a failure if there is none.
    QQuickItem* find(const char* objectName);

    /// Everything that is shown, lists' rows included.
    QList<QQuickItem*> shown() const;

    /// The item that is shown whose `property` is `value`; null if there is none.
    QQuickItem* labelled(const char* property, const QString& value) const;

    /// The items of that object name that are shown, lists' rows included.
    QList<QQuickItem*> itemsNamed(const char* name) const;

    /// Where `item` is in the window, in points.
    static QRect place(const QQuickItem* item);

    /// Moves the pointer to the middle of `item`, or away from everything.
    void hover(const QQuickItem* item);
    void hoverNothing();
    void click(const QQuickItem* item);

    QQmlEngine& engine() { return *m_engine; }

    const ScanState done = {
        .phase = ScanModel::Phase::done, .seconds = 3725.4, .fileCount = 12, .bytes = 1'500'000};

    ScanView scan;
    RecordingActions actions;
    Alerts alerts;
    Details details;
    std::unique_ptr<QQuickWindow> window;

private:
    QQuickItem* showItem(const char* name, const QVariantMap& properties, const QSize& points);

    std::unique_ptr<QQmlEngine> m_engine;
};

/// The index of the pixel (x, y) among the pixels of an image of that width, row by row.
std::size_t pixelIndex(int x, int y, int width);

/// How far apart two colours are: the largest difference of a channel, from 0 to 255.
int distance(const QColor& a, const QColor& b);

/// `above` at `opacity` painted over `below`.
QColor over(const QColor& below, const QColor& above, double opacity);

} // namespace velmora::test
