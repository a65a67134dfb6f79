#pragma once

// One state of the window for a picture of it, and what brings it about.

#include "tests/staged/RecordingActions.h"
#include "tests/staged/SampleDetails.h"
#include "tests/staged/StagedWindow.h"
#include "tests/support/ComesTrue.h"
#include "ui/content/ScanView.h"
#include "ui/details/Details.h"
#include "ui/window/Alerts.h"

#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

#include <functional>
#include <memory>

namespace velmora::test {

/// One state of the window while it is arranged.
struct Stage {
    ScanView scan;
    Alerts alerts;
    Details details;
    RecordingActions actions;
    QQmlEngine engine;
    std::unique_ptr<QQuickWindow> window = stageWindow(engine, scan, actions, alerts, false, &details);
    bool complete = true; ///< whether everything that the page shows has appeared

    QQuickItem* item(const char* name) { return window->findChild<QQuickItem*>(name); }

    void press(Qt::Key key, int times = 1) {
        for (int i = 0; i < times; ++i) {
            QTest::keyClick(window.get(), key);
        }
    }

    void hover(const char* name) {
        const QQuickItem* target = item(name);
        QTest::mouseMove(window.get(),
                         target->mapToScene({target->width() / 2, target->height() / 2}).toPoint());
        QTest::qWait(1);
    }

    void showDetails(Details::List list) {
        const auto [found, summary] = sampleDetails();
        details.show(found, summary);
        details.openOn(list);
        complete = complete && comesTrue([this] { return details.rows()->count() > 0; });
    }

    void awaitToolTip() {
        const bool shown = comesTrue([this] { return !visibleToolTips(*window).isEmpty(); });
        complete = complete && shown;
    }
};

struct Page {
    ScanState state = {};
    std::function<void(Stage& stage)> arrange = {};
};

} // namespace velmora::test
