pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Theme

/// A hairline between two parts of a screen, of whole pixels.
ContinuousRectangle {
    implicitWidth: 1
    implicitHeight: 1
    color: Theme.separator
}
