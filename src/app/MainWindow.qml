pragma ComponentBehavior: Bound

import QtQuick
import Aulora.Images
import Aulora.Service
import Aulora.State
import Aulora.Theme
import Aulora.Ui

/// The one window: the sidebar beside the detail column, and whatever is presented over them. It
/// hands the state to the views and the views' signals to the state's operations.
Window {
    id: window

    required property ContentView contentView
    required property SendFlow sendFlow
    required property ImageIntake imageIntake
    required property string authorLine
    required property string credentialsLine

    width: 1120
    height: 820
    minimumWidth: 940
    minimumHeight: 700
    title: "Aulora IA"
    color: Theme.textBackground
    visible: true

    Binding {
        target: Theme
        property: "appearanceRawValue"
        value: window.contentView.appearanceRawValue
    }

    // Qt's own names for these two have no keys on some desktops.
    Shortcut {
        sequence: "Ctrl+W"
        onActivated: window.close()
    }

    Shortcut {
        sequence: "Ctrl+Q"
        // Whatever is presented over the window.
        context: Qt.ApplicationShortcut
        onActivated: Qt.quit()
    }

    ImageDropArea {
        objectName: "dropArea"
        anchors.fill: parent
        intake: window.imageIntake
        onIsTargetedChanged: window.contentView.isDropTargeted = isTargeted

        Sidebar {
            id: sidebar

            objectName: "sidebar"
            width: 240
            height: parent.height
            conversations: window.contentView.conversations
            onNewConversationRequested: window.contentView.startNewConversation()
            onConversationChosen: id => window.contentView.selectConversation(id)
            onClearHistoryRequested: window.contentView.requestClearHistory()
            onSettingsRequested: window.contentView.showSettings = true
        }

        DetailColumn {
            id: detail

            objectName: "detail"
            anchors.left: sidebar.right
            anchors.right: parent.right
            height: parent.height
            contentView: window.contentView
            authorLine: window.authorLine
            pendingPreview: window.imageIntake.pendingPreview
            onSendRequested: window.sendFlow.sendMessage()
            onPasteRequested: {
                if (!window.imageIntake.pasteImage())
                    pasteText();
            }
        }

        SidebarHandle {
            objectName: "sidebarHandle"
            x: sidebar.width
            height: parent.height
            minimumWidth: 215
            maximumWidth: 285
            onSidebarWidthChosen: width => sidebar.width = width
        }
    }

    Presentation {
        presented: window.contentView.showSettings

        ModalSheet {
            presented: window.contentView.showSettings
            title: "Configuración"
            padding: 0
            onDismissed: window.contentView.showSettings = false

            contentItem: SettingsView {
                appearanceRawValue: window.contentView.appearanceRawValue
                textSizeRawValue: window.contentView.textSizeRawValue
                imageAnalysisEnabled: window.contentView.imageAnalysisEnabled
                showImagePreviews: window.contentView.showImagePreviews
                authorLine: window.authorLine
                credentialsLine: window.credentialsLine
                onAppearanceChosen: rawValue => window.contentView.appearanceRawValue = rawValue
                onTextSizeChosen: rawValue => window.contentView.textSizeRawValue = rawValue
                onImageAnalysisSwitched: enabled => window.contentView.imageAnalysisEnabled = enabled
                onImagePreviewsSwitched: show => window.contentView.showImagePreviews = show
                onClearHistoryRequested: window.contentView.requestClearHistoryFromSettings()
                onCloseRequested: window.contentView.showSettings = false
            }
        }
    }

    Presentation {
        presented: window.contentView.showClearHistoryConfirmation

        ClearHistoryAlert {
            presented: window.contentView.showClearHistoryConfirmation
            onConfirmed: window.contentView.clearHistory()
            onDismissed: window.contentView.showClearHistoryConfirmation = false
        }
    }

    Presentation {
        presented: window.contentView.hasImageImportError

        AlertDialog {
            presented: window.contentView.hasImageImportError
            title: "No pude cargar la imagen"
            message: window.contentView.imageImportErrorText
            buttons: [
                {
                    text: "Aceptar",
                    role: "cancel"
                }
            ]
            onDismissed: window.contentView.dismissImageImportError()
        }
    }

    Presentation {
        presented: window.contentView.showImageViewer

        ImageViewer {
            presented: window.contentView.showImageViewer
            imageBytes: window.contentView.enlargedImageBytes
            onCloseRequested: window.contentView.closeImageViewer()
        }
    }

    // Loaded by its address, so that what chooses files is read when first wanted.
    Loader {
        id: importer

        readonly property bool presented: window.contentView.showImageImporter

        onPresentedChanged: {
            if (!item)
                source = "qrc:/qt/qml/Aulora/Chooser/ImageImporter.qml";
        }
    }

    Binding {
        target: importer.item
        property: "presented"
        value: importer.presented
    }

    Connections {
        target: importer.item

        function onFinished(urls) {
            window.contentView.showImageImporter = false;
            window.imageIntake.handleImportedFile(urls);
        }
    }
}
