pragma ComponentBehavior: Bound

import QtQuick
import Aulora.Images
import Aulora.State
import Aulora.Theme
import Aulora.Ui

/// The second column of the window: the status, the chat, the composer and the footer.
Rectangle {
    id: detail

    required property ContentView contentView
    required property string authorLine
    /// A small picture of the image waiting to be sent.
    required property var pendingPreview

    readonly property int sidePadding: 27

    signal sendRequested
    /// The person asked to paste into the composer; `pasteText` does so.
    signal pasteRequested

    function pasteText() {
        composer.pasteText();
    }

    color: Theme.textBackground

    TopBar {
        id: topBar

        objectName: "topBar"
        width: parent.width
        isLoading: detail.contentView.isLoading
    }

    Divider {
        id: topDivider

        objectName: "topDivider"
        anchors.top: topBar.bottom
        width: parent.width
    }

    ChatPane {
        id: chatPane

        objectName: "chatPane"
        anchors.top: topDivider.bottom
        anchors.bottom: bottomDivider.top
        width: parent.width
        messages: detail.contentView.currentMessages
        isLoading: detail.contentView.isLoading
        replyHasStarted: detail.contentView.replyHasStarted
        textScale: detail.contentView.textScale
        showImagePreviews: detail.contentView.showImagePreviews
        studyHome: StudyHome {
            onPromptChosen: prompt => detail.contentView.messageText = prompt
        }
        onImageTapped: bytes => detail.contentView.openImageViewer(bytes)
    }

    Divider {
        id: bottomDivider

        objectName: "bottomDivider"
        anchors.bottom: composer.top
        anchors.bottomMargin: 11
        width: parent.width
    }

    ComposerBar {
        id: composer

        objectName: "composer"
        x: detail.sidePadding
        anchors.bottom: footer.top
        anchors.bottomMargin: 10
        width: parent.width - 2 * detail.sidePadding
        focus: true
        text: detail.contentView.messageText
        hasImage: detail.contentView.hasSelectedImage
        imagePreview: detail.pendingPreview
        imageName: detail.contentView.selectedImageTitle
        imageAnalysisEnabled: detail.contentView.imageAnalysisEnabled
        isLoading: detail.contentView.isLoading
        onTextEdited: text => detail.contentView.messageText = text
        onAttachRequested: detail.contentView.showImageImporter = true
        onRemoveImageRequested: detail.contentView.clearSelectedImage()
        onSendRequested: detail.sendRequested()
        onPasteRequested: detail.pasteRequested()
    }

    FooterBand {
        id: footer

        objectName: "footer"
        anchors.bottom: parent.bottom
        width: parent.width
        authorLine: detail.authorLine
    }

    Announcement {
        id: announcement
    }

    // Announces start and end of a reply, whichever conversation is shown meanwhile. An error
    // notice ends the reply as well, and is announced instead of that end.
    Connections {
        target: detail.contentView

        function onReplyStarted() {
            announcement.say("Aulora IA está respondiendo");
        }
        function onIsLoadingChanged() {
            if (!detail.contentView.isLoading)
                announcement.say("Respuesta terminada");
        }
        function onNoticeAppended(text) {
            announcement.say(text);
        }
    }

    DropOverlay {
        objectName: "dropOverlay"
        anchors.fill: parent
        presented: detail.contentView.isDropTargeted
        backdrop: chatPane
    }
}
