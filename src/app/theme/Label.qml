pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Theme

/// Plain text in the interface font, by size in points, weight and tracking.
Text {
    property real points: 13
    property int weight: Font.Normal
    property real tracking: 0

    textFormat: Text.PlainText
    color: Theme.primary
    font: Theme.font(points, weight, tracking)
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
