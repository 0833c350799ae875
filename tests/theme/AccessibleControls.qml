pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Theme

// The controls as a screen holds them, for what they tell assistive technology.
Item {
    id: root

    property int pressCount: 0
    property bool preference: true
    property string size: "standard"
    property bool alertPresented: false

    width: 600
    height: 400

    Column {
        Label {
            text: "Preguntá lo que quieras"
        }

        PlainButton {
            text: "Enviar"
            onClicked: root.pressCount += 1
            contentItem: Symbol {
                name: "arrow.up"
            }
        }

        PushButton {
            text: "Borrar historial"
            role: "destructive"
        }

        Toggle {
            text: "Mostrar miniaturas"
            checked: root.preference
            onToggled: root.preference = checked
        }

        SegmentedPicker {
            label: "Tamaño"
            model: [
                { label: "Compacto", value: "compact" },
                { label: "Normal", value: "standard" }
            ]
            currentValue: root.size
            onPicked: value => root.size = value
        }
    }

    AlertDialog {
        title: "¿Borrar historial?"
        message: "Se eliminarán todas las conversaciones."
        buttons: [
            { text: "Borrar", role: "destructive" },
            { text: "Cancelar", role: "cancel" }
        ]
        presented: root.alertPresented
        onDismissed: root.alertPresented = false
    }
}
