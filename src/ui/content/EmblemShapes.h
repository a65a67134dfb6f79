#pragma once

// The two emblems of the window as shapes: a waveform of thin upright strokes with round ends.

#include <QPainterPath>

namespace velmora {

/// A waveform with a plus at its lower right. `size` is that of a letter it would stand beside, in points;
/// the shape is centred on the origin and about `size` high.
QPainterPath waveformWithPlus(double size);

/// A waveform crossed out by a stroke from the upper left to the lower right.
QPainterPath waveformWithSlash(double size);

} // namespace velmora
