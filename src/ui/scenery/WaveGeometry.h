#pragma once

// The ribbons drawn by a GPU: one mesh with a colour at every corner.

#include "ui/scenery/MeshWriter.h"
#include "ui/scenery/WaveShape.h"

#include <QSGGeometryNode>

namespace velmora {

class WaveGeometry : public QSGGeometryNode {
public:
    WaveGeometry();

    /// Draws `shape` for a display of `scale` pixels a point.
    void draw(const WaveShape& shape, double scale);

private:
    MeshWriter m_mesh; // kept for its memory
};

} // namespace velmora
