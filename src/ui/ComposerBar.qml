import QtQuick
import Aulora.Images
import Aulora.Theme
import Aulora.Ui

/// Where a question is written: attach button, text field and send button, with a disclaimer
/// underneath.
FocusScope {
    id: bar

    required property string text
    required property bool hasImage
    /// A small picture of the pending image, in bytes.
    required property var imagePreview
    required property string imageName
    required property bool imageAnalysisEnabled
    required property bool isLoading

    readonly property bool canSend: ComposerRules.canSend(text, hasImage, imageAnalysisEnabled,
                                                          isLoading)

    signal textEdited(string text)
    signal attachRequested
    signal removeImageRequested
    signal sendRequested
    /// The person asked to paste; `pasteText` does so when nothing else takes what is offered.
    signal pasteRequested

    function pasteText() {
        field.pasteText();
    }

    implicitHeight: content.height

    Column {
        id: content

        width: bar.width
        spacing: 8

        AttachmentChip {
            objectName: "chip"
            visible: bar.hasImage
            imageBytes: bar.imagePreview
            imageName: bar.imageName
            onRemoveRequested: bar.removeImageRequested()
        }

        Item {
            width: parent.width
            height: field.height

            PlainButton {
                id: attach

                objectName: "attach"
                anchors.bottom: parent.bottom
                width: 36
                height: 43
                text: "Adjuntar imagen"
                onClicked: {
                    if (bar.imageAnalysisEnabled)
                        bar.attachRequested();
                }

                Tooltip {
                    objectName: "attachTooltip"
                    button: attach
                    isAbove: true
                }

                contentItem: Item {
                    Symbol {
                        anchors.centerIn: parent
                        name: "paperclip"
                        size: 17
                        color: Theme.secondary
                    }
                }
            }

            ComposerField {
                id: field

                objectName: "field"
                anchors.left: attach.right
                anchors.leftMargin: 8
                anchors.right: send.left
                anchors.rightMargin: 10
                focus: true
                text: bar.text
                placeholder: bar.imageAnalysisEnabled && bar.hasImage
                             ? "Preguntá sobre la imagen..." : "Preguntale a Aulora IA..."
                onTextEdited: text => bar.textEdited(text)
                // Ignore Return while nothing can be sent; otherwise the question would be queued
                // and sent later.
                onSubmitted: {
                    if (bar.canSend)
                        bar.sendRequested();
                }
                onPasteRequested: bar.pasteRequested()
            }

            PlainButton {
                id: send

                objectName: "send"
                anchors.right: parent.right
                anchors.bottom: parent.bottom
                width: 43
                height: 43
                focusRadius: width / 2
                enabled: bar.canSend
                text: "Enviar"
                onClicked: bar.sendRequested()

                background: ContinuousRectangle {
                    radius: send.focusRadius
                    color: bar.canSend ? Theme.accent : Qt.alpha(Theme.gray, 0.22)
                }

                contentItem: Item {
                    Symbol {
                        anchors.centerIn: parent
                        name: "arrow.up"
                        size: 15
                        weight: Font.Bold
                        color: "white"
                    }
                }
            }

            // Not within the button, which hears of no pointer while there is nothing to send.
            Tooltip {
                objectName: "sendTooltip"
                button: send
                isAbove: true
            }
        }

        Disclaimer {}
    }
}
