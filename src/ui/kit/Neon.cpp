#include "ui/kit/Neon.h"

namespace velmora {

QColor Neon::faded(const QColor& color, double opacity) {
    QColor result = color;
    result.setAlphaF(color.alphaF() * static_cast<float>(opacity));
    return result;
}

} // namespace velmora
