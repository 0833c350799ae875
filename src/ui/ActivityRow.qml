pragma ComponentBehavior: Bound

import QtQuick
import Aulora.Theme

/// Says that a question is under way while nothing of its reply has arrived.
ContinuousRectangle {
    implicitWidth: row.width + 26
    implicitHeight: row.height + 20
    radius: 15
    color: Theme.panelBackground

    Row {
        id: row

        x: 13
        y: 10
        spacing: 11

        Spinner {
            anchors.verticalCenter: parent.verticalCenter
            size: 16
        }

        Column {
            anchors.verticalCenter: parent.verticalCenter
            spacing: 2

            Label {
                text: "Aulora IA"
                points: 11
                weight: Font.DemiBold
            }

            Label {
                text: "Preparando respuesta…"
                points: 10
                color: Theme.secondary
            }
        }
    }
}
