#pragma once

// Pictures of the window's content with demonstration data, rendered without a display: the same run makes
// the images of the web site and proves that every view draws.

#include "ui/content/ScanView.h"

#include <QImage>
#include <QSize>

#include <filesystem>

namespace velmora::Screenshots {

/// The time that the moving scenery shows in the pictures, in seconds since 2001-01-01 00:00 UTC. Always the
/// same, so that the pictures are.
inline constexpr double shotTime = 812'000'000;

/// Makes rendering independent of the desktop: no display, no GPU, no theme, no scale, no fonts but our own.
/// Before the application object is created.
void prepareEnvironment();

/// Writes "1-result.png", "2-drop.png" and "3-scanning.png" into the directory, which is made if it is
/// missing; 2880 × 1800 pixels each, the same bytes on every run. A picture that cannot be written is left
/// out; there is no message. Needs the prepared environment and an application object; main thread.
void render(const std::filesystem::path& into);

/// The window's content, `points` large, showing `scan`, at `scale` pixels a point. Null if it cannot be
/// drawn.
QImage picture(ScanView& scan, const QSize& points, double scale);

} // namespace velmora::Screenshots
