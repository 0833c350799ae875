import QtQuick
import Aulora.Theme

/// Asks before every stored conversation is deleted.
AlertDialog {
    signal confirmed

    title: "¿Borrar historial?"
    message: "Se eliminarán todas las conversaciones guardadas en este dispositivo. La memoria de Aulora IA en el servidor no se modificará."
    buttons: [
        {
            text: "Borrar historial",
            role: "destructive"
        },
        {
            text: "Cancelar",
            role: "cancel"
        }
    ]
    onPicked: index => {
        if (index === 0)
            confirmed();
    }
}
