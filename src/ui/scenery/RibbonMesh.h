#pragma once

// The ribbons drawn by a GPU: one mesh with a colour at every vertex.

#include "ui/scenery/MeshWriter.h"
#include "ui/scenery/RibbonSet.h"

#include <QSGGeometryNode>

namespace velmora {

class RibbonMesh : public QSGGeometryNode {
public:
    RibbonMesh();

    /// Draws `ribbons` for a display of `scale` pixels a point.
    void draw(const RibbonSet& ribbons, double scale);

private:
    MeshWriter m_mesh; // a member so that its memory is used again
};

} // namespace velmora
