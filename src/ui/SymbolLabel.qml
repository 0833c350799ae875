import QtQuick
import Aulora.Theme

/// A line of a sidebar button: a symbol in a column of its own, then the text.
Item {
    id: line

    required property string icon
    required property real iconSize
    property int iconWeight: Font.Normal
    property color iconColor: Theme.primary
    required property string text
    required property real points
    property int weight: Font.Normal
    property color color: Theme.primary

    Item {
        id: iconFrame

        objectName: "iconFrame"
        width: 20
        height: parent.height

        Symbol {
            anchors.centerIn: parent
            name: line.icon
            size: line.iconSize
            weight: line.iconWeight
            color: line.iconColor
        }
    }

    Label {
        objectName: "text"
        anchors.left: iconFrame.right
        anchors.leftMargin: 10
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        text: line.text
        points: line.points
        weight: line.weight
        color: line.color
        elide: Text.ElideRight
        Accessible.ignored: true
    }
}
