import QtQuick

/// How a colour follows the pointer onto a card and off it.
ColorAnimation {
    duration: 160
    easing.type: Easing.OutCubic
}
