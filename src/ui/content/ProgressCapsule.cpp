#include "ui/content/ProgressCapsule.h"

#include "ui/kit/Glow.h"
#include "ui/kit/Neon.h"

#include <QLinearGradient>
#include <QPainter>

#include <algorithm>

namespace velmora {

namespace {

constexpr double minFilledWidth = 6; // points
constexpr double trackOpacity = 0.06;
constexpr double shadowRadius = 8;
constexpr double capsuleShadowOpacity = 0.7;

void fillCapsule(QPainter& painter, const QRectF& box, const QBrush& brush) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(brush);
    painter.drawRoundedRect(box, box.height() / 2, box.height() / 2);
}

} // namespace

QMarginsF ProgressCapsule::overflow() const {
    const double reach = blurReach(shadowRadius);
    return {reach, reach, reach, reach};
}

double ProgressCapsule::filledWidth() const {
    return std::max(minFilledWidth, width() * std::clamp(m_progress, 0.0, 1.0));
}

void ProgressCapsule::paint(QPainter& painter) const {
    const QRectF filled(0, 0, filledWidth(), height());
    fillCapsule(painter, QRectF(0, 0, width(), height()), Neon::faded(Qt::white, trackOpacity));
    drawBlurred(painter, filled, shadowRadius, Neon::faded(Neon::violet, capsuleShadowOpacity), 1,
                [&filled](QPainter& target) { fillCapsule(target, filled, Qt::black); });
    QLinearGradient gradient(filled.topLeft(), filled.topRight());
    gradient.setColorAt(0, Neon::violet);
    gradient.setColorAt(1, Neon::indigo);
    fillCapsule(painter, filled, gradient);
}

} // namespace velmora
