pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T
import Aulora.Theme

/// A button without any chrome: its content item is all there is to see. Its text is its accessible
/// name. A press never takes the keyboard focus away from where the person is typing.
T.AbstractButton {
    id: button

    property real focusRadius: 8
    /// Whether the ring of the keyboard's focus lies within the button, where it has no room around.
    property bool focusRingIsInside: false

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    focusPolicy: Qt.TabFocus
    opacity: down ? 0.65 : 1
    // Its ring lies over its neighbours.
    z: visualFocus ? 1 : 0
    Keys.forwardTo: [ring]
    Accessible.name: text
    // Qt offers the action to a screen reader but leaves doing it to us.
    Accessible.onPressAction: {
        if (button.enabled)
            button.clicked();
    }

    FocusRing {
        id: ring

        control: button
        innerRadius: button.focusRadius
        isInside: button.focusRingIsInside
        onReturnPressed: button.clicked()
    }
}
