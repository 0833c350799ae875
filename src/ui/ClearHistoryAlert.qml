import QtQuick
import Aulora.Theme

/// Asks before every stored conversation is deleted.
AlertDialog {
    title: "¿Borrar historial?"
    message: "Se eliminarán todas las conversaciones guardadas en este dispositivo. La memoria de Aulora IA en el servidor no se modificará."
}
