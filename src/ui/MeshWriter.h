#pragma once

// Writes the meshes of the moving scenery: corners with premultiplied colours, joined to triangles.

#include <QSGGeometry>

#include <cstddef>
#include <optional>
#include <vector>

class QColor;
class QSGGeometryNode;

namespace velmora {

/// A colour with its channels multiplied by its opacity, from 0 to 1.
struct MeshColor {
    float red = 0;
    float green = 0;
    float blue = 0;
    float opacity = 0;

    static MeshColor of(const QColor& opaque, double opacity);
    MeshColor faded(double share) const;
};

/// Adds the channels: a mix of two colours.
MeshColor operator+(const MeshColor& a, const MeshColor& b);

class MeshWriter {
public:
    /// Starts a mesh. Meshes of the same `kind` join their corners alike, so that only the first one's joints
    /// are written.
    void start(std::size_t kind);

    /// Adds a corner and returns its number.
    quint32 corner(double x, double y, const MeshColor& color);

    void triangle(quint32 a, quint32 b, quint32 c);

    /// Two triangles over the corners of a convex shape with four, in their order around it.
    void quad(quint32 a, quint32 b, quint32 c, quint32 d);

    /// Makes what was written the geometry of `node`, always the same one.
    void finish(QSGGeometryNode& node);

private:
    std::optional<std::size_t> m_kind;
    bool m_joined = false; // the joints are those of the mesh before
    std::vector<QSGGeometry::ColoredPoint2D> m_corners;
    std::vector<quint32> m_indices;
};

/// Gives `node` an empty mesh and a material that draws it.
void prepareMesh(QSGGeometryNode& node);

} // namespace velmora
