pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Theme

/// The logo; its height follows its width.
LogoItem {
    wordColor: Theme.primary
    height: width * implicitHeight / implicitWidth
    Accessible.role: Accessible.Graphic
    Accessible.name: "Aulora IA"
}
