import QtQuick
import Aulora.Theme

/// The line that reminds the reader what the answers are for.
Row {
    spacing: 5

    Symbol {
        objectName: "symbol"
        anchors.verticalCenter: parent.verticalCenter
        name: "shield.checkered"
        size: 8
        color: Theme.secondary
    }

    Label {
        objectName: "text"
        anchors.verticalCenter: parent.verticalCenter
        text: "Herramienta educativa. Verificá la información médica relevante."
        points: 9
        color: Theme.secondary
    }
}
