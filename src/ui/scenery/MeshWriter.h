#pragma once

// Writes the meshes of the moving scenery: vertices with premultiplied colours, and the indices that join
// them to triangles.

#include <QSGGeometry>

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

/// A mesh consists of triangles or of strips. In one of the same layout as the one before, only what may
/// differ is written, straight to where Qt reads it.
class MeshWriter {
public:
    /// Starts the mesh of `node`, always the same node. Meshes of the same `layout` have the same number of
    /// vertices and the same indices.
    void start(QSGGeometryNode& node, double layout);

    /// Whether the mesh before had the same layout: its indices are kept, and those added now are ignored.
    bool keepsLayout() const { return m_next != nullptr; }

    /// Adds a vertex and returns its index.
    quint32 addVertex(double x, double y, const MeshColor& color) {
        const auto byte = [](float channel) { return static_cast<uchar>(255 * channel + 0.5F); };
        const QSGGeometry::ColoredPoint2D vertex{static_cast<float>(x), static_cast<float>(y),
                                                 byte(color.red),       byte(color.green),
                                                 byte(color.blue),      byte(color.opacity)};
        if (keepsLayout()) {
            *m_next++ = vertex;
        } else {
            m_vertices.push_back(vertex);
        }
        return m_count++;
    }

    /// Adds a vertex of the same colour as in the mesh before; only where the layout is kept.
    void moveVertex(double x, double y) {
        m_next->x = static_cast<float>(x);
        m_next->y = static_cast<float>(y);
        ++m_next;
        ++m_count;
    }

    /// Adds a triangle between three vertices.
    void addTriangle(quint32 a, quint32 b, quint32 c) {
        if (!keepsLayout()) {
            m_indices.insert(m_indices.end(), {a, b, c});
        }
    }

    /// Adds two triangles that cover a convex shape with four vertices, given in their order around it.
    void addQuad(quint32 a, quint32 b, quint32 c, quint32 d) {
        addTriangle(a, b, c);
        addTriangle(a, c, d);
    }

    /// Adds a strip of triangles between two rows of `count` vertices each: from `first` and from `first` +
    /// 1, each vertex `distance` indices after the one before. It takes a third of the indices of triangles,
    /// and Qt sends all of them to the GPU with every frame.
    void addStrip(quint32 first, quint32 count, quint32 distance);

    /// Makes what was written the geometry of the node given to `start`.
    void finish();

private:
    QSGGeometry* newGeometry() const;

    QSGGeometryNode* m_node = nullptr;
    std::optional<double> m_layout;
    QSGGeometry::ColoredPoint2D* m_next = nullptr; // in the node's geometry; null: the layout is a new one
    quint32 m_count = 0;                           // of the vertices added
    std::vector<QSGGeometry::ColoredPoint2D> m_vertices; // of a new layout
    std::vector<quint32> m_indices;                      // likewise
    QSGGeometry::DrawingMode m_mode = QSGGeometry::DrawTriangles;
};

/// Gives `node` what draws a mesh.
void prepareMesh(QSGGeometryNode& node);

} // namespace velmora
