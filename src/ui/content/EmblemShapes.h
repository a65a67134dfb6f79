#pragma once

// The two emblems of the window as shapes: a waveform of thin upright strokes with round ends.

#include <QPainterPath>

namespace velmora {

/// A waveform with a plus at its lower right, centred on the origin and about `size` points high.
QPainterPath waveformWithPlus(double size);

/// A waveform crossed out by a stroke from the upper left to the lower right; `size` as above.
QPainterPath waveformWithSlash(double size);

} // namespace velmora
