import QtQuick
import Velmora

// A line of text, read aloud as it stands.
PaintedText {
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
