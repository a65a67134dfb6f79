#pragma once

// A row of bars that moves like a spectrum.

#include "ui/scenery/AnimatedItem.h"
#include "ui/scenery/MeshWriter.h"
#include "ui/scenery/SpectrumFormula.h"

#include <QtQml/qqmlregistration.h>

#include <vector>

namespace velmora {

class SpectrumStrip : public velmora::AnimatedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double roomAfterBars READ roomAfterBars NOTIFY widthChanged)

public:
    using AnimatedItem::AnimatedItem;

    double roomAfterBars() const { return velmora::roomAfterBars(width()); }

protected:
    Picture picture(double scale) override;
    QSGGeometryNode* mesh(QSGGeometryNode* mesh, double scale) override;

private:
    std::vector<Bar> bars() const;

    MeshWriter m_mesh;
};

} // namespace velmora
