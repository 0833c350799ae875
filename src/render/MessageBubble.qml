pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Render

/// One message of a conversation, the user's or the assistant's, as wide as the list.
MessageDelegate {
    id: bubble

    required property bool isUser
    required property bool hasAttachmentName
    required property string attachmentName
    required property var imagePreviewData
    required property real textScale
    required property bool showImagePreview

    /// The thumbnail was pressed; `bytes` are the preview's.
    signal imageTapped(bytes: var)

    implicitHeight: layout.height

    // A reply grows; a question does not.
    onAppendedTextChanged: {
        const message = layout.item as AssistantMessage;
        if (message)
            message.appendText(appendedText);
    }

    LazyItem {
        id: layout

        component: bubble.isUser ? userLayout : assistantLayout
    }

    Component {
        id: userLayout

        UserMessage {
            width: bubble.width
            text: bubble.messageText
            hasAttachmentName: bubble.hasAttachmentName
            attachmentName: bubble.attachmentName
            imagePreviewData: bubble.imagePreviewData
            textScale: bubble.textScale
            showImagePreview: bubble.showImagePreview
            trackedItem: bubble
            onImageTapped: bytes => bubble.imageTapped(bytes)
        }
    }

    Component {
        id: assistantLayout

        AssistantMessage {
            width: bubble.width
            text: bubble.messageText
            textScale: bubble.textScale
            trackedItem: bubble
        }
    }
}
