#pragma once

// The program's window on prepared data.

#include <QList>

#include <memory>

class QQmlEngine;
class QQuickItem;
class QQuickWindow;

namespace velmora {

class Actions;
class Alerts;
class Details;
class FilePanel;
class ScanView;

namespace test {

/// The window, not yet shown; without one the program ends with the reason. The arguments outlive it.
/// `animated` lets the scenery move;
/// without `details` there are none to open.
std::unique_ptr<QQuickWindow> stageWindow(QQmlEngine& engine, ScanView& scan, Actions& actions,
                                          Alerts& alerts, bool animated, Details* details = nullptr);

/// The file panel of `window`. The folders that it shows are made up: nothing is read.
FilePanel& panelOf(const QQuickWindow& window);

/// The tool tips that `window` shows.
QList<QQuickItem*> visibleToolTips(const QQuickWindow& window);

} // namespace test

} // namespace velmora
