pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T
import Aulora.Theme

/// What the keyboard needs of a control: a ring around it while the keyboard got there by itself,
/// and, when a button forwards its keys here, a press of Return, which Qt leaves alone.
Item {
    id: ring

    required property T.Control control
    /// The corner radius of what it surrounds.
    property real innerRadius: 6

    signal returnPressed

    /// Between the control's edge and the ring; negative for a ring within.
    property real gap: 2
    readonly property real thickness: 2.5

    anchors.fill: parent
    anchors.margins: -gap - thickness
    z: 1

    Keys.onPressed: event => {
        event.accepted = event.key === Qt.Key_Return || event.key === Qt.Key_Enter;
        if (event.accepted && !event.isAutoRepeat)
            returnPressed();
    }

    // Keys are only forwarded to what is visible, so not all of this is hidden.
    ContinuousRectangle {
        anchors.fill: parent
        visible: ring.control.visualFocus
        radius: ring.innerRadius + ring.gap + ring.thickness
        borderWidth: ring.thickness
        borderColor: Qt.alpha(Theme.dark ? Qt.lighter(Theme.accent, 1.9) : Theme.accent, 0.65)
    }
}
