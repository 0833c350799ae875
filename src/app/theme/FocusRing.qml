pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Theme

// Shows around its parent that the keyboard acts on it.
ContinuousRectangle {
    /// The corner radius of what it surrounds.
    property real innerRadius: 6

    readonly property real gap: 2

    anchors.fill: parent
    anchors.margins: -gap - borderWidth
    z: 1
    radius: innerRadius + gap + borderWidth
    borderWidth: 2.5
    borderColor: Qt.alpha(Theme.dark ? Qt.lighter(Theme.accent, 1.9) : Theme.accent, 0.65)
}
