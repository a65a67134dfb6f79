#include "ui/MeshWriter.h"

#include <QColor>
#include <QSGGeometryNode>
#include <QSGVertexColorMaterial>

#include <algorithm>

namespace velmora {

namespace {

uchar byte(float channel) {
    return static_cast<uchar>(255 * std::clamp(channel, 0.0F, 1.0F) + 0.5F);
}

} // namespace

MeshColor MeshColor::of(const QColor& opaque, double opacity) {
    return MeshColor{opaque.redF(), opaque.greenF(), opaque.blueF(), 1}.faded(opacity);
}

MeshColor MeshColor::faded(double share) const {
    const auto factor = static_cast<float>(share);
    return {red * factor, green * factor, blue * factor, opacity * factor};
}

MeshColor operator+(const MeshColor& a, const MeshColor& b) {
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

quint32 MeshWriter::corner(double x, double y, const MeshColor& color) {
    m_corners.push_back({static_cast<float>(x), static_cast<float>(y), byte(color.red), byte(color.green),
                         byte(color.blue), byte(color.opacity)});
    return static_cast<quint32>(m_corners.size() - 1);
}

void MeshWriter::triangle(quint32 a, quint32 b, quint32 c) {
    if (!m_joined) {
        m_indices.insert(m_indices.end(), {a, b, c});
    }
}

void MeshWriter::quad(quint32 a, quint32 b, quint32 c, quint32 d) {
    triangle(a, b, c);
    triangle(a, c, d);
}

void MeshWriter::finish(QSGGeometryNode& node) {
    QSGGeometry* geometry = node.geometry();
    if (!m_joined) {
        geometry->allocate(static_cast<int>(m_corners.size()), static_cast<int>(m_indices.size()));
        std::copy(m_indices.begin(), m_indices.end(), geometry->indexDataAsUInt());
    }
    std::copy(m_corners.begin(), m_corners.end(), geometry->vertexDataAsColoredPoint2D());
    node.markDirty(QSGNode::DirtyGeometry);
}

void prepareMesh(QSGGeometryNode& node) {
    auto* geometry =
        new QSGGeometry(QSGGeometry::defaultAttributes_ColoredPoint2D(), 0, 0, QSGGeometry::UnsignedIntType);
    geometry->setDrawingMode(QSGGeometry::DrawTriangles);
    node.setGeometry(geometry);
    node.setMaterial(new QSGVertexColorMaterial);
    node.setFlags(QSGNode::OwnsGeometry | QSGNode::OwnsMaterial);
}

} // namespace velmora
