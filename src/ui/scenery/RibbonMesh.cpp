#include "ui/scenery/RibbonMesh.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <span>

namespace velmora {

namespace {

/// One vertex of a band's cross-section.
struct Rib {
    double distance = 0; ///< from the middle of the band, in points
    double share = 0;    ///< of the band's colour
};

/// What one band consists of.
struct Band {
    std::size_t stride = 1; ///< steps of the ribbon's path from one row of vertices to the next
    std::span<const Rib> ribs;
    bool glows = false;
};

/// Draws a band along `curve`. The colours depend on the field's width alone, so that in a mesh of the same
/// layout the vertices only move.
void drawBand(MeshWriter& mesh, const RibbonSet& ribbons, const RibbonCurve& curve, const Band& band) {
    quint32 rows = 0;
    quint32 end = 0; // the index after that of the last vertex
    for (std::size_t i = 0; i < curve.path.size(); i += band.stride) {
        const double x = static_cast<double>(i) * ribbonStep;
        const RibbonPoint point = curve.at(x);
        const double down = 1 / std::sqrt(1 + point.slope * point.slope); // across the ribbon
        const double left = point.slope * down;
        if (mesh.keepsLayout()) {
            for (const Rib& rib : band.ribs) {
                mesh.moveVertex(x - rib.distance * left, point.y + rib.distance * down);
            }
            continue;
        }
        const AccentMix mix = ribbons.color(curve, x);
        const MeshColor color =
            accentColor(mix.violet, mix.indigo).faded(band.glows ? ribbons.glowPeak(x) : 1);
        for (const Rib& rib : band.ribs) {
            end = 1 + mesh.addVertex(x - rib.distance * left, point.y + rib.distance * down,
                                     color.faded(rib.share));
        }
        ++rows;
    }
    const auto ribCount = static_cast<quint32>(band.ribs.size());
    for (quint32 rib = 0; rib + 1 < ribCount; ++rib) {
        mesh.addStrip(end - rows * ribCount + rib, rows, ribCount);
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
    constexpr std::size_t glowStride = 4; // the glow needs fewer vertices along the path than the stroke
    static const GlowRibs glow = glowRibs();
    const auto stroke = strokeRibs(scale);
    m_mesh.start(*this, ribbons.size.width());
    for (const RibbonCurve& curve : ribbons.curves) {
        drawBand(m_mesh, ribbons, curve, {.stride = glowStride, .ribs = glow, .glows = true});
    }
    for (const RibbonCurve& curve : ribbons.curves) {
        drawBand(m_mesh, ribbons, curve, {.ribs = stroke});
    }
    m_mesh.finish();
}

} // namespace velmora
