pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Dialogs
import Aulora.Images

/// The way to one image on the device: the file chooser of a system that always has one.
FileDialog {
    id: importer

    property bool presented: false

    /// The chooser closed: with the file that was chosen, or with none.
    signal finished(var urls)

    title: "Elegí una imagen"
    visible: presented
    fileMode: FileDialog.OpenFile
    acceptLabel: "Abrir"
    rejectLabel: "Cancelar"
    nameFilters: [`Imágenes (${ImageFileNames.patterns.join(" ")})`]

    onAccepted: importer.finished([importer.selectedFile])
    onRejected: importer.finished([])
}
