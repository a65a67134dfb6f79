#pragma once

// Text whose digits stand in cells of equal width: a number that counts keeps all its letters in their
// places.

#include "ui/kit/TextStyle.h"

#include <QString>

#include <vector>

namespace velmora {

struct TextPiece {
    QString text; ///< one digit, or what stands between digits
    double x = 0; ///< of its start, in points
};

struct CellText {
    std::vector<TextPiece> pieces; ///< from left to right
    double width = 0;              ///< points; tracking is added between letters, not after the last one
};

/// Places `text`: each digit in the middle of a cell as wide as the widest digit, all else as it is set.
CellText inDigitCells(const QString& text, const TextStyle& style);

} // namespace velmora
