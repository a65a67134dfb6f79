#include "ui/scenery/RibbonMesh.h"

#include <array>
#include <cmath>
#include <span>

namespace velmora {

namespace {

/// One vertex of a band's cross-section.
struct Rib {
    double distance = 0; ///< from the middle of the band, in points
    double share = 0;    ///< of the band's colour
};

/// Draws a band along `curve` with a vertex on every rib every `step` points.
void drawBand(MeshWriter& mesh, const RibbonSet& ribbons, const RibbonCurve& curve, double step,
              std::span<const Rib> ribs, bool glows) {
    const auto ribCount = static_cast<quint32>(ribs.size());
    for (double x = 0; x <= curve.end(); x += step) {
        const RibbonPoint point = curve.at(x);
        const double length = std::sqrt(1 + point.slope * point.slope);
        const AccentMix mix = ribbons.color(curve, x);
        const MeshColor color = accentColor(mix.violet, mix.indigo).faded(glows ? ribbons.glowPeak(x) : 1);
        quint32 here = 0;
        for (const Rib& rib : ribs) {
            here = mesh.addVertex(x - rib.distance * point.slope / length, point.y + rib.distance / length,
                                  color.faded(rib.share));
            if (x > 0 && rib.distance > ribs.front().distance) {
                mesh.addQuad(here - 1 - ribCount, here - 1, here, here - ribCount);
            }
        }
    }
}

/// The soft edge of a stroke is one pixel wide.
std::array<Rib, 4> strokeRibs(double scale) {
    const double inner = ribbonWidth / 2 - 0.5 / scale;
    const double outer = ribbonWidth / 2 + 0.5 / scale;
    return {{{-outer, 0}, {-inner, 1}, {inner, 1}, {outer, 0}}};
}

constexpr int glowRibsASide = 4;
constexpr double glowRibDistance = 0.75; ///< in radii: the ribs reach from -3 to 3
using GlowRibs = std::array<Rib, 2 * glowRibsASide + 1>;

GlowRibs glowRibs() {
    GlowRibs ribs;
    for (std::size_t i = 0; i < ribs.size(); ++i) {
        const double at = (static_cast<double>(i) - glowRibsASide) * glowRibDistance;
        ribs[i] = {at * ribbonGlowRadius, std::exp(-at * at / 2)};
    }
    return ribs;
}

} // namespace

RibbonMesh::RibbonMesh() {
    prepareMesh(*this);
}

void RibbonMesh::draw(const RibbonSet& ribbons, double scale) {
    constexpr int glowSteps = 4; // the glow needs fewer vertices along the path than the stroke
    static const GlowRibs glow = glowRibs();
    m_mesh.start(ribbons.curves.front().path.size());
    for (const RibbonCurve& curve : ribbons.curves) {
        drawBand(m_mesh, ribbons, curve, glowSteps * ribbonStep, glow, true);
    }
    for (const RibbonCurve& curve : ribbons.curves) {
        drawBand(m_mesh, ribbons, curve, ribbonStep, strokeRibs(scale), false);
    }
    m_mesh.finish(*this);
}

} // namespace velmora
