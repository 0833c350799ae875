import QtQuick

// Nothing but a window.
Window {
    width: 1120
    height: 820
    visible: true
    title: "Empty"
}
