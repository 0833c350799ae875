import QtQuick
import Aulora.Theme

/// The deep green band at the foot of both columns, with its line of accent along the top.
Rectangle {
    implicitHeight: 34
    color: Theme.accentDeep

    Rectangle {
        objectName: "topLine"
        width: parent.width
        height: 1
        color: Theme.accentAt(0.95)
    }
}
