#pragma once

// Pictures of the window's content with demonstration data, rendered without a display: the same run makes
// the images of the web site and proves that every view draws.

#include "ui/content/ScanView.h"

#include <QImage>
#include <QSize>

#include <filesystem>

namespace velmora::Screenshots {

/// When the moving scenery is photographed, in seconds since its epoch: any moment would do, always the same.
inline constexpr double shotTime = 812'000'000;

/// Makes rendering independent of the desktop: no display, no GPU, no theme, no scale, no fonts but our own.
/// Before the application object is created.
void prepareEnvironment();

/// Writes "1-result.png", "2-drop.png" and "3-scanning.png" into the directory, which is made if it is
/// missing; 2880 × 1800 pixels each, the same bytes on every run. What fails is left out without a word.
/// Needs the prepared environment and an application object; main thread.
void render(const std::filesystem::path& into);

/// The window's content, `points` large, showing `scan`, at `scale` pixels a point. Null if it cannot be
/// drawn.
QImage picture(ScanView& scan, const QSize& points, double scale);

} // namespace velmora::Screenshots
