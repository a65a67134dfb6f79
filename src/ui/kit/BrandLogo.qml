import QtQuick
import Velmora

PaintedLogo {
    implicitHeight: 54
    width: height
    source: ":/qt-project.org/imports/Velmora/orventa-logo-white.png"
    Accessible.role: Accessible.Graphic
    Accessible.name: "Orventa"
}
