pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T
import Aulora.Theme

/// A labelled switch: the label leads, the switch is at the trailing end.
T.Switch {
    id: control

    implicitWidth: implicitContentWidth + spacing + implicitIndicatorWidth
    implicitHeight: Math.max(implicitContentHeight, implicitIndicatorHeight)
    spacing: 10
    focusPolicy: Qt.TabFocus
    Keys.forwardTo: [ring]
    Accessible.role: Accessible.CheckBox
    Accessible.name: text
    Accessible.onPressAction: flip()
    Accessible.onToggleAction: flip()

    function flip() {
        if (!enabled)
            return;
        toggle();
        toggled();
    }

    contentItem: Label {
        text: control.text
        points: 13
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }

    FocusRing {
        id: ring

        parent: control.indicator
        control: control
        innerRadius: 11
        onReturnPressed: control.flip()
    }

    indicator: ContinuousRectangle {
        x: control.width - width
        y: Math.round((control.height - height) / 2)
        implicitWidth: 38
        implicitHeight: 22
        radius: 11
        color: control.checked ? Theme.accent : Theme.primaryAt(0.16)

        Behavior on color {
            ColorAnimation { duration: 120 }
        }

        ContinuousRectangle {
            x: 2 + control.visualPosition * (parent.width - width - 4)
            y: 2
            width: 18
            height: 18
            radius: 9
            color: "white"
            borderWidth: 0.5
            borderColor: Qt.alpha("black", 0.12)

            Behavior on x {
                enabled: !control.down
                NumberAnimation { duration: 120; easing.type: Easing.OutCubic }
            }
        }
    }
}
