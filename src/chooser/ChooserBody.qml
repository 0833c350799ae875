pragma ComponentBehavior: Bound

import QtQuick
import Aulora.Chooser
import Aulora.Theme

/// What is in the chooser's sheet: the folders at hand beside one folder's contents.
Item {
    id: body

    required property string title
    required property string acceptLabel
    required property string filterName
    /// Where to begin; empty for the folder of the person's pictures.
    required property url startFolder

    /// An image file was chosen.
    signal chosen(url file)
    signal folderOpened(url folder)
    signal cancelled

    /// The folder that was left last: selected where it is shown.
    property url previousFolder

    function open(folder: url) {
        previousFolder = model.folder;
        model.folder = folder;
    }

    function accept() {
        if (!pane.hasSelection)
            return;
        if (pane.selectedIsFolder)
            open(pane.selectedFile);
        else
            body.chosen(pane.selectedFile);
    }

    implicitWidth: 740
    implicitHeight: 540

    FolderModel {
        id: model

        folder: body.startFolder
        onFolderChanged: body.folderOpened(folder)
        onStateChanged: pane.select(rowOf(body.previousFolder))
    }

    ChooserPlaces {
        id: places

        onFound: {
            if (String(model.folder) === "")
                model.folder = start;
        }
    }

    Item {
        id: header

        width: parent.width
        height: 52

        Label {
            objectName: "title"
            x: 20
            anchors.verticalCenter: parent.verticalCenter
            text: body.title
            points: 15
            weight: Font.DemiBold
        }
    }

    Divider {
        id: headerDivider

        anchors.top: header.bottom
        width: parent.width
    }

    Column {
        id: atHand

        anchors.top: headerDivider.bottom
        width: 172
        padding: 10
        spacing: 3

        Repeater {
            model: places.places

            PlaceRow {
                required property var modelData
                // Qt 6.8 writes a URL out of a map otherwise than one out of a property.
                readonly property url folder: modelData.folder

                width: atHand.width - 2 * atHand.padding
                text: modelData.label
                symbol: modelData.symbol
                highlighted: String(model.folder) === String(folder)
                onClicked: body.open(folder)
            }
        }
    }

    Divider {
        id: middle

        anchors.top: headerDivider.bottom
        anchors.bottom: footerDivider.top
        anchors.left: atHand.right
    }

    FolderPane {
        id: pane

        objectName: "pane"
        anchors.top: headerDivider.bottom
        anchors.bottom: footerDivider.top
        anchors.left: middle.right
        anchors.right: parent.right
        // The sheet's edge stays free.
        anchors.rightMargin: 1
        folder: model
        onActivated: body.accept()
        onFolderRequested: folder => body.open(folder)
    }

    Divider {
        id: footerDivider

        anchors.bottom: footer.top
        width: parent.width
    }

    Item {
        id: footer

        anchors.bottom: parent.bottom
        width: parent.width
        height: 56

        Label {
            x: 20
            anchors.verticalCenter: parent.verticalCenter
            text: "Tipo de archivo: " + body.filterName
            points: 11
            color: Theme.secondary
        }

        Row {
            anchors.right: parent.right
            anchors.rightMargin: 20
            anchors.verticalCenter: parent.verticalCenter
            spacing: 10

            PushButton {
                width: 96
                height: 30
                text: "Cancelar"
                onClicked: body.cancelled()
            }

            PushButton {
                id: acceptButton

                width: 96
                height: 30
                text: body.acceptLabel
                role: "default"
                enabled: pane.hasSelection
                opacity: enabled ? (down ? 0.65 : 1) : 0.4
                onClicked: body.accept()
            }
        }
    }
}
