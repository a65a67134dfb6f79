#pragma once

// The faint grid over the whole backdrop.

class QPainter;
class QSizeF;

namespace velmora {

inline constexpr double gridPitch = 34; ///< points from line to line, the first at 0
inline constexpr double gridLineWidth = 0.5;
inline constexpr double gridOpacity = 0.045;

/// Paints the grid over `size` points for a display of `scale` pixels a point. Each line fills whole pixels.
/// Where a pixel is wider than the line, its opacity is reduced in proportion.
void paintGrid(QPainter& painter, const QSizeF& size, double scale);

} // namespace velmora
