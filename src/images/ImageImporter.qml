pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Dialogs
import Aulora.Images

/// The desktop's file chooser, for one image.
FileDialog {
    id: importer

    required property bool presented

    /// The chooser closed: with the file that was chosen, or with none.
    signal finished(var urls)

    title: "Elegí una imagen"
    visible: presented
    fileMode: FileDialog.OpenFile
    acceptLabel: "Abrir"
    rejectLabel: "Cancelar"
    nameFilters: [`Imágenes (${ImageFileNames.filter})`]

    onAccepted: importer.finished([importer.selectedFile])
    onRejected: importer.finished([])
}
