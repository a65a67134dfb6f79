import QtQuick
import Velmora

// Glowing text, read aloud as it stands.
PaintedGlowText {
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
