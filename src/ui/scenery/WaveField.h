#pragma once

// Five ribbons of light that move under the window's content.

#include "ui/scenery/AnimatedItem.h"
#include "ui/scenery/RibbonImage.h"

#include <QtQml/qqmlregistration.h>

#include <array>

namespace velmora {

class WaveField : public velmora::AnimatedItem {
    Q_OBJECT
    QML_ELEMENT

public:
    using AnimatedItem::AnimatedItem;

protected:
    Picture picture(double scale) override;
    QSGGeometryNode* mesh(QSGGeometryNode* mesh, double scale) override;

private:
    const RibbonSet& ribbons(); ///< at the present time

    RibbonSet m_ribbons;
    std::array<RibbonImage, 2> m_images; ///< used in turns: one is shown while the other is drawn
    std::size_t m_turn = 0;
};

} // namespace velmora
