pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T
import Aulora.Theme

/// How a desktop scrolls, for any flickable: by wheel and touchpad, by a thin bar that shows while
/// it is of use, by keys, and to the control the keyboard moved to. A drag of the mouse is left to
/// the content, so that text can be selected.
Item {
    id: controls

    required property Flickable flickable
    /// How far from the flickable's lower end the bar ends: where that has a rounded corner.
    property real barMargin: 0

    readonly property real wheelStep: 60
    readonly property bool scrollable: flickable.contentHeight > flickable.height

    function scrollBy(distance: real) {
        const end = Math.max(0, flickable.contentHeight - flickable.height);
        flickable.contentY = flickable.originY + Math.max(0, Math.min(end, flickable.contentY - flickable.originY + distance));
    }

    /// Takes the keys that scroll, while there is something to scroll.
    function pressKey(event: var) {
        const page = flickable.height * 0.9;
        const distances = {
            [Qt.Key_Up]: -wheelStep,
            [Qt.Key_Down]: wheelStep,
            [Qt.Key_PageUp]: -page,
            [Qt.Key_PageDown]: page,
            [Qt.Key_Home]: -flickable.contentHeight,
            [Qt.Key_End]: flickable.contentHeight
        };
        const distance = distances[event.key];
        event.accepted = scrollable && distance !== undefined;
        if (event.accepted)
            scrollBy(distance);
    }

    function reveal(item: Item) {
        const visibleTop = item.mapToItem(flickable, 0, 0).y;
        const beyondBottom = visibleTop + item.height - flickable.height;
        if (visibleTop < 0)
            scrollBy(visibleTop - 8);
        else if (beyondBottom > 0)
            scrollBy(beyondBottom + 8);
    }

    parent: flickable
    anchors.fill: parent
    z: 1

    WheelHandler {
        enabled: controls.scrollable
        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
        onWheel: event => controls.scrollBy(-(event.pixelDelta.y || event.angleDelta.y / 120 * controls.wheelStep))
    }

    Delay {
        id: revealLater

        interval: 0
        onTriggered: controls.revealFocus()
    }

    Connections {
        target: controls.Window.window

        function onActiveFocusItemChanged() {
            revealLater.restart();
        }
    }

    function revealFocus() {
        const control = controls.Window.activeFocusItem as T.Control;
        if (!control || !control.visualFocus)
            return;
        for (let item = control.parent; item; item = item.parent) {
            if (item === flickable.contentItem)
                return reveal(control);
        }
    }

    T.ScrollBar {
        id: bar

        anchors.top: parent.top
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.bottomMargin: controls.barMargin
        implicitWidth: 11
        padding: 2
        minimumSize: 24 / Math.max(24, height)
        visible: controls.scrollable
        hoverEnabled: true
        size: controls.flickable.visibleArea.heightRatio
        Accessible.ignored: true

        onPositionChanged: {
            linger.restart();
            if (pressed)
                controls.flickable.contentY = controls.flickable.originY + position * controls.flickable.contentHeight;
        }

        Binding {
            bar.position: controls.flickable.visibleArea.yPosition
            when: !bar.pressed
        }

        Delay {
            id: linger

            interval: 900
        }

        contentItem: ContinuousRectangle {
            radius: width / 2
            color: Theme.primaryAt(0.35)
            opacity: linger.running || bar.hovered || bar.pressed ? 1 : 0

            Behavior on opacity {
                NumberAnimation { duration: 160 }
            }
        }
    }
}
