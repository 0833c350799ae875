import QtQuick
import Aulora.Theme

/// A symbol centred on a small square with continuous corners.
ContinuousRectangle {
    id: tile

    required property real size
    required property string icon
    required property real iconSize
    property color iconColor: Theme.primary

    width: size
    height: size

    Symbol {
        anchors.centerIn: parent
        name: tile.icon
        size: tile.iconSize
        color: tile.iconColor
    }
}
