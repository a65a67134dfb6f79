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

void MeshWriter::start(std::size_t kind) {
    m_joined = m_kind == kind;
    m_kind = kind;
    m_corners.clear();
    if (!m_joined) {
        m_indices.clear();
    }
}

void MeshWriter::finish(QSGGeometryNode& node) {
    if (!m_joined) {
        node.setGeometry(joinedGeometry());
    }
    std::copy(m_corners.begin(), m_corners.end(), node.geometry()->vertexDataAsColoredPoint2D());
    node.markDirty(QSGNode::DirtyGeometry);
}

/// Joints are half as large where the corners are few enough: they are sent to the GPU with every frame.
QSGGeometry* MeshWriter::joinedGeometry() const {
    const bool few = m_corners.size() <= 1U << 16U;
    auto* geometry = new QSGGeometry(QSGGeometry::defaultAttributes_ColoredPoint2D(),
                                     static_cast<int>(m_corners.size()), static_cast<int>(m_indices.size()),
                                     few ? QSGGeometry::UnsignedShortType : QSGGeometry::UnsignedIntType);
    geometry->setDrawingMode(QSGGeometry::DrawTriangles);
    if (few) {
        std::transform(m_indices.begin(), m_indices.end(), geometry->indexDataAsUShort(),
                       [](quint32 index) { return static_cast<quint16>(index); });
    } else {
        std::copy(m_indices.begin(), m_indices.end(), geometry->indexDataAsUInt());
    }
    return geometry;
}

void prepareMesh(QSGGeometryNode& node) {
    auto* material = new QSGVertexColorMaterial;
    material->setFlag(QSGMaterial::RequiresFullMatrix); // so that meshes are not merged corner by corner
    node.setMaterial(material);
    node.setFlags(QSGNode::OwnsGeometry | QSGNode::OwnsMaterial);
}

} // namespace velmora
