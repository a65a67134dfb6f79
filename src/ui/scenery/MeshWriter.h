#pragma once

// Writes the meshes of the moving scenery: corners with premultiplied colours, joined to triangles.

#include <QSGGeometry>

#include <cstddef>
#include <optional>
#include <vector>

class QColor;
class QSGGeometryNode;

namespace velmora {

/// A colour with its channels multiplied by its opacity, all from 0 to 1.
struct MeshColor {
    float red = 0;
    float green = 0;
    float blue = 0;
    float opacity = 0;

    static MeshColor of(const QColor& opaque);

    MeshColor faded(double share) const {
        const auto factor = static_cast<float>(share);
        return {red * factor, green * factor, blue * factor, opacity * factor};
    }
};

/// So much of opaque violet and so much of opaque indigo; together 1 at most.
MeshColor accentColor(double violet, double indigo);

class MeshWriter {
public:
    /// Starts a mesh. Meshes of the same `kind` join their corners alike, so that only the first one's joints
    /// are written.
    void start(std::size_t kind);

    /// Adds a corner and returns its number.
    quint32 corner(double x, double y, const MeshColor& color) {
        const auto byte = [](float channel) { return static_cast<uchar>(255 * channel + 0.5F); };
        m_corners.push_back({static_cast<float>(x), static_cast<float>(y), byte(color.red), byte(color.green),
                             byte(color.blue), byte(color.opacity)});
        return static_cast<quint32>(m_corners.size() - 1);
    }

    void triangle(quint32 a, quint32 b, quint32 c) {
        if (!m_joined) {
            m_indices.insert(m_indices.end(), {a, b, c});
        }
    }

    /// Two triangles over the corners of a convex shape with four, in their order around it.
    void quad(quint32 a, quint32 b, quint32 c, quint32 d) {
        triangle(a, b, c);
        triangle(a, c, d);
    }

    /// Makes what was written the geometry of `node`, always the same node.
    void finish(QSGGeometryNode& node);

private:
    QSGGeometry* joinedGeometry() const;

    std::optional<std::size_t> m_kind;
    bool m_joined = false; // the joints are those of the mesh before
    std::vector<QSGGeometry::ColoredPoint2D> m_corners;
    std::vector<quint32> m_indices;
};

/// Gives `node` what draws a mesh.
void prepareMesh(QSGGeometryNode& node);

} // namespace velmora
