pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Theme

/// Scrolls its content from top to bottom. It is as wide as the pane and as high as it likes.
Flickable {
    id: pane

    /// How far from the pane's lower end its scroll bar ends.
    property alias barMargin: controls.barMargin

    contentWidth: width
    contentHeight: contentItem.childrenRect.height
    interactive: false
    boundsBehavior: Flickable.StopAtBounds
    pixelAligned: true
    clip: true

    Keys.onPressed: event => controls.pressKey(event)

    ScrollControls {
        id: controls

        flickable: pane
    }
}
