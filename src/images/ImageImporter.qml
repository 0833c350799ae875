pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Dialogs

// The desktop's file chooser, for one image.
FileDialog {
    id: importer

    required property bool presented

    readonly property var extensions: ["jpg", "jpeg", "png", "gif", "webp", "bmp", "tif", "tiff",
        "heic", "heif"]

    /// The chooser closed: with the file that was chosen, or with none.
    signal finished(var urls)

    title: "Elegí una imagen"
    visible: presented
    fileMode: FileDialog.OpenFile
    acceptLabel: "Abrir"
    rejectLabel: "Cancelar"
    // Choosers compare names with their case; cameras write theirs in capitals.
    nameFilters: [`Imágenes (${extensions.map(name => `*.${name} *.${name.toUpperCase()}`).join(" ")})`]

    onAccepted: importer.finished([importer.selectedFile])
    onRejected: importer.finished([])
}
