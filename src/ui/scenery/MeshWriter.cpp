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

void MeshWriter::start(QSGGeometryNode& node, double layout) {
    m_node = &node;
    m_next = m_layout == layout ? node.geometry()->vertexDataAsColoredPoint2D() : nullptr;
    m_layout = layout;
    m_count = 0;
    m_vertices.clear();
    m_indices.clear();
}

void MeshWriter::addStrip(quint32 first, quint32 count, quint32 distance) {
    if (keepsLayout()) {
        return;
    }
    m_mode = QSGGeometry::DrawTriangleStrip;
    if (!m_indices.empty()) { // triangles without area lead to it from the strip before
        m_indices.insert(m_indices.end(), {m_indices.back(), first});
    }
    for (quint32 i = 0; i < count; ++i) {
        m_indices.insert(m_indices.end(), {first + i * distance, first + i * distance + 1});
    }
}

void MeshWriter::finish() {
    if (!keepsLayout()) {
        m_node->setGeometry(newGeometry());
    }
    m_node->markDirty(QSGNode::DirtyGeometry);
}

/// With indices of 16 bits where the vertices are few enough.
QSGGeometry* MeshWriter::newGeometry() const {
    const bool fits16Bits = m_vertices.size() <= 1U << 16U;
    auto* geometry =
        new QSGGeometry(QSGGeometry::defaultAttributes_ColoredPoint2D(), static_cast<int>(m_vertices.size()),
                        static_cast<int>(m_indices.size()),
                        fits16Bits ? QSGGeometry::UnsignedShortType : QSGGeometry::UnsignedIntType);
    geometry->setDrawingMode(m_mode);
    if (fits16Bits) {
        std::ranges::transform(m_indices, geometry->indexDataAsUShort(),
                               [](quint32 index) { return static_cast<quint16>(index); });
    } else {
        std::ranges::copy(m_indices, geometry->indexDataAsUInt());
    }
    std::ranges::copy(m_vertices, geometry->vertexDataAsColoredPoint2D());
    return geometry;
}

void prepareMesh(QSGGeometryNode& node) {
    auto* material = new QSGVertexColorMaterial;
    material->setFlag(QSGMaterial::RequiresFullMatrix); // else Qt merges meshes and copies each vertex
    node.setMaterial(material);
    node.setFlags(QSGNode::OwnsGeometry | QSGNode::OwnsMaterial);
}

} // namespace velmora
