#pragma once

// Writes the meshes of the moving scenery: vertices with premultiplied colours, and the indices that join
// them to triangles.

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

/// The sum of violet and indigo, each multiplied by its share. The shares together are at most 1.
MeshColor accentColor(double violet, double indigo);

class MeshWriter {
public:
    /// Starts a mesh. Meshes of the same `layout` have the same number of vertices and the same indices: the
    /// indices of the mesh before are kept, and those of this one are ignored.
    void start(std::size_t layout);

    /// Adds a vertex and returns its index.
    quint32 addVertex(double x, double y, const MeshColor& color) {
        const auto byte = [](float channel) { return static_cast<uchar>(255 * channel + 0.5F); };
        m_vertices.push_back({static_cast<float>(x), static_cast<float>(y), byte(color.red),
                              byte(color.green), byte(color.blue), byte(color.opacity)});
        return static_cast<quint32>(m_vertices.size() - 1);
    }

    /// Adds a triangle between three vertices.
    void addTriangle(quint32 a, quint32 b, quint32 c) {
        if (!m_keepsIndices) {
            m_indices.insert(m_indices.end(), {a, b, c});
        }
    }

    /// Adds two triangles that cover a convex shape with four vertices, given in their order around it.
    void addQuad(quint32 a, quint32 b, quint32 c, quint32 d) {
        addTriangle(a, b, c);
        addTriangle(a, c, d);
    }

    /// Makes what was written the geometry of `node`, always the same node.
    void finish(QSGGeometryNode& node);

private:
    QSGGeometry* newGeometry() const;

    std::optional<std::size_t> m_layout;
    bool m_keepsIndices = false; // the layout is that of the mesh before
    std::vector<QSGGeometry::ColoredPoint2D> m_vertices;
    std::vector<quint32> m_indices;
};

/// Gives `node` what draws a mesh.
void prepareMesh(QSGGeometryNode& node);

} // namespace velmora
