pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T
import Aulora.Theme

/// A plain button that is a row of a list; the highlighted one is selected.
T.ItemDelegate {
    id: item

    property real focusRadius: 8

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    focusPolicy: Qt.TabFocus
    opacity: down ? 0.65 : 1
    // Its ring lies over its neighbours.
    z: visualFocus ? 1 : 0
    Keys.forwardTo: [ring]
    Accessible.role: Accessible.ListItem
    Accessible.name: text
    Accessible.onPressAction: {
        if (item.enabled)
            item.clicked();
    }
    Accessible.selectable: true
    Accessible.selected: highlighted

    FocusRing {
        id: ring

        control: item
        innerRadius: item.focusRadius
        onReturnPressed: item.clicked()
    }
}
