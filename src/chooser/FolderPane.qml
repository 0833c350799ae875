pragma ComponentBehavior: Bound

import QtQuick
import Aulora.Chooser
import Aulora.Theme

/// A folder: the way up, its name, and what there is to choose from in it.
Item {
    id: pane

    required property FolderModel folder

    /// Asks for the selected one to be opened or taken.
    signal activated
    signal folderRequested(url folder)

    readonly property bool hasSelection: grid.hasSelection
    readonly property url selectedFile: (grid.currentItem as FolderItem)?.file ?? ""
    readonly property bool selectedIsFolder: (grid.currentItem as FolderItem)?.isFolder ?? false

    /// Selects the row, or none for -1.
    function select(row: int) {
        grid.select(row, Qt.OtherFocusReason);
    }

    function openParent() {
        if (up.enabled)
            folderRequested(folder.parentFolder);
    }

    Keys.onPressed: event => {
        const goesUp = event.key === Qt.Key_Backspace || (event.key === Qt.Key_Up && event.modifiers & Qt.AltModifier);
        event.accepted = goesUp;
        if (goesUp)
            openParent();
    }

    Item {
        id: bar

        width: parent.width
        height: 40

        PlainButton {
            id: up

            objectName: "up"
            x: 8
            anchors.verticalCenter: parent.verticalCenter
            width: 28
            height: 28
            enabled: String(pane.folder.parentFolder) !== ""
            text: "Carpeta superior"
            onClicked: pane.openParent()

            contentItem: Item {
                Symbol {
                    anchors.centerIn: parent
                    name: "arrow.up"
                    size: 13
                    weight: Font.Medium
                    color: up.enabled ? Theme.primary : Theme.primaryAt(0.3)
                }
            }
        }

        Label {
            objectName: "folderName"
            anchors.left: up.right
            anchors.leftMargin: 6
            anchors.right: note.left
            anchors.rightMargin: 12
            anchors.verticalCenter: parent.verticalCenter
            text: pane.folder.folderName
            points: 12.5
            weight: Font.DemiBold
            maximumLineCount: 1
            elide: Text.ElideMiddle
        }

        Label {
            id: note

            anchors.right: parent.right
            anchors.rightMargin: 14
            anchors.verticalCenter: parent.verticalCenter
            visible: text !== ""
            text: pane.folder.state === FolderModel.Incomplete ? "No se muestran todos los archivos." : ""
            points: 11
            color: Theme.secondary
        }
    }

    Divider {
        id: divider

        anchors.top: bar.bottom
        width: parent.width
    }

    Rectangle {
        anchors.top: divider.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        color: Theme.textBackground

        FolderGrid {
            id: grid

            objectName: "grid"
            anchors.fill: parent
            folder: pane.folder
            focus: true
            onActivated: pane.activated()
        }

        Label {
            objectName: "emptiness"
            anchors.centerIn: parent
            visible: text !== ""
            text: {
                switch (pane.folder.state) {
                case FolderModel.Reading:
                    return patience.running ? "" : "Leyendo la carpeta…";
                case FolderModel.Unreadable:
                    return "No pude leer esta carpeta.";
                default:
                    return grid.count === 0 ? "No hay imágenes en esta carpeta." : "";
                }
            }
            points: 12.5
            color: Theme.secondary
        }
    }

    // Most folders are read before anything could be said of it.
    Delay {
        id: patience

        interval: 300
        Component.onCompleted: restart()
    }

    Connections {
        target: pane.folder

        function onFolderChanged() {
            patience.restart();
        }
    }
}
