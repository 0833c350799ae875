pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T

/// Gives the focus back, when a popup has closed, to the item that had it before the popup opened. Qt
/// gives it to the window.
Connections {
    required property T.Popup popup

    property Item previousItem: null

    target: popup

    function onAboutToShow() {
        previousItem = popup.parent.Window.activeFocusItem;
    }

    function onClosed() {
        previousItem?.forceActiveFocus(Qt.PopupFocusReason);
        previousItem = null;
    }
}
