#include "ui/scenery/WaveField.h"

#include "ui/scenery/WaveGeometry.h"

namespace velmora {

const WaveShape& WaveField::shape() {
    m_shape.move(size(), intensity(), time());
    return m_shape;
}

AnimatedItem::Picture WaveField::picture(double scale) {
    m_turn = 1 - m_turn;
    WaveImage& image = m_images[m_turn];
    image.draw(shape(), scale);
    return {image.image(), image.area()};
}

QSGGeometryNode* WaveField::mesh(QSGGeometryNode* mesh, double scale) {
    auto* geometry = mesh == nullptr ? new WaveGeometry : static_cast<WaveGeometry*>(mesh);
    geometry->draw(shape(), scale);
    return geometry;
}

} // namespace velmora
