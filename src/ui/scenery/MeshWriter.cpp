#include "ui/scenery/MeshWriter.h"

#include "ui/kit/Neon.h"

#include <QColor>
#include <QSGGeometryNode>
#include <QSGVertexColorMaterial>

#include <algorithm>

namespace velmora {

MeshColor MeshColor::of(const QColor& opaque) {
    return {opaque.redF(), opaque.greenF(), opaque.blueF(), 1};
}

MeshColor accentColor(double violet, double indigo) {
    static const MeshColor first = MeshColor::of(Neon::violet);
    static const MeshColor second = MeshColor::of(Neon::indigo);
    const MeshColor a = first.faded(violet);
    const MeshColor b = second.faded(indigo);
    return {a.red + b.red, a.green + b.green, a.blue + b.blue, a.opacity + b.opacity};
}

void MeshWriter::start(std::size_t layout) {
    m_keepsIndices = m_layout == layout;
    m_layout = layout;
    m_vertices.clear();
    if (!m_keepsIndices) {
        m_indices.clear();
    }
}

void MeshWriter::finish(QSGGeometryNode& node) {
    if (!m_keepsIndices) {
        node.setGeometry(newGeometry());
    }
    std::ranges::copy(m_vertices, node.geometry()->vertexDataAsColoredPoint2D());
    node.markDirty(QSGNode::DirtyGeometry);
}

/// Qt sends the indices to the GPU with every frame: 16-bit ones are used where the vertices are few enough.
QSGGeometry* MeshWriter::newGeometry() const {
    const bool fits16Bits = m_vertices.size() <= 1U << 16U;
    auto* geometry =
        new QSGGeometry(QSGGeometry::defaultAttributes_ColoredPoint2D(), static_cast<int>(m_vertices.size()),
                        static_cast<int>(m_indices.size()),
                        fits16Bits ? QSGGeometry::UnsignedShortType : QSGGeometry::UnsignedIntType);
    geometry->setDrawingMode(QSGGeometry::DrawTriangles);
    if (fits16Bits) {
        std::ranges::transform(m_indices, geometry->indexDataAsUShort(),
                               [](quint32 index) { return static_cast<quint16>(index); });
    } else {
        std::ranges::copy(m_indices, geometry->indexDataAsUInt());
    }
    return geometry;
}

void prepareMesh(QSGGeometryNode& node) {
    auto* material = new QSGVertexColorMaterial;
    material->setFlag(QSGMaterial::RequiresFullMatrix); // else Qt merges meshes and copies each vertex
    node.setMaterial(material);
    node.setFlags(QSGNode::OwnsGeometry | QSGNode::OwnsMaterial);
}

} // namespace velmora
