#include "ui/scenery/WaveField.h"

#include "ui/scenery/RibbonMesh.h"

namespace velmora {

const RibbonSet& WaveField::ribbons() {
    m_ribbons.move(size(), intensity(), time());
    return m_ribbons;
}

AnimatedItem::Picture WaveField::picture(double scale) {
    m_turn = 1 - m_turn;
    RibbonImage& image = m_images[m_turn];
    image.draw(ribbons(), scale);
    return {image.image(), image.area()};
}

QSGGeometryNode* WaveField::mesh(QSGGeometryNode* mesh, double scale) {
    auto* geometry = mesh == nullptr ? new RibbonMesh : static_cast<RibbonMesh*>(mesh);
    geometry->draw(ribbons(), scale);
    return geometry;
}

} // namespace velmora
