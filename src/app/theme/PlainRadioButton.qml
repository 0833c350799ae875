pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T
import Aulora.Theme

/// A plain button that is one of several choices: what is checked is the current one.
T.RadioButton {
    id: button

    property real focusRadius: 8

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    focusPolicy: Qt.TabFocus
    opacity: down ? 0.65 : 1
    // Its ring lies over its neighbours.
    z: visualFocus ? 1 : 0
    Keys.forwardTo: [ring]
    // Not based on PlainButton, whose template Qt 6.4.2 announces as a check box when it is checkable,
    // whatever role is stated here.
    Accessible.role: Accessible.RadioButton
    Accessible.name: text
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.onToggleAction: press()
    Accessible.onPressAction: press()

    function press() {
        if (enabled)
            clicked();
    }

    FocusRing {
        id: ring

        control: button
        innerRadius: button.focusRadius
        onReturnPressed: button.clicked()
    }
}
