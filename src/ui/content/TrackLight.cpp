#include "ui/content/TrackLight.h"

#include "ui/kit/Neon.h"

#include <QLinearGradient>
#include <QPainter>

namespace velmora {

void TrackLight::paint(QPainter& painter) const {
    QLinearGradient gradient(0, 0, width(), 0);
    gradient.setColorAt(0, Neon::faded(Neon::violet, 0));
    gradient.setColorAt(0.5, Neon::faded(Neon::violet, 0.9));
    gradient.setColorAt(1, Neon::faded(Neon::indigo, 0));
    painter.fillRect(QRectF(0, 0, width(), height()), gradient);
}

} // namespace velmora
