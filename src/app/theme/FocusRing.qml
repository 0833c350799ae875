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

    /// Where the ring has no room around the control, it lies within.
    property bool isInside: false

    readonly property real thickness: wholePixels(2.5)
    readonly property real gap: wholePixels(isInside ? 3 : 2)

    // A ring of broken pixels would be blurred, and not the same on all its sides.
    function wholePixels(points: real): real {
        return Math.round(points * Screen.devicePixelRatio) / Screen.devicePixelRatio;
    }

    anchors.fill: parent
    anchors.margins: isInside ? gap : -gap - thickness
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
        radius: ring.isInside ? ring.innerRadius : ring.innerRadius + ring.gap + ring.thickness
        borderWidth: ring.thickness
        borderColor: Qt.alpha(Theme.dark ? Qt.lighter(Theme.accent, 1.9) : Theme.accent, 0.65)
    }
}
