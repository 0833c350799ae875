pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Render
import Aulora.Text
import Aulora.Theme

/// The user's side of a conversation: a black bubble at the trailing edge with the attached image,
/// its name and the question.
Item {
    id: message

    required property string text
    required property bool hasAttachmentName
    required property string attachmentName
    required property var imagePreviewData
    required property real textScale
    required property bool showImagePreview
    required property TrackedItem trackedItem

    signal imageTapped(bytes: var)

    readonly property bool hasImage: showImagePreview && imagePreviewData.byteLength > 0
    readonly property real maximumContentWidth: Math.max(0, Math.min(610, width - 110) - 2 * 17)
    readonly property real contentWidth: Math.max(question.implicitWidth, attachment.width)

    implicitHeight: question.y + question.implicitHeight + 12

    Accessible.role: Accessible.Paragraph
    Accessible.name: question.plainText
    Accessible.description: attachmentName

    LazyItem {
        anchors.right: parent.right
        active: message.trackedItem.nearViewport

        ContinuousRectangle {
            objectName: "background"
            width: message.contentWidth + 2 * 17
            height: message.implicitHeight
            radius: 18
            color: "black"
        }
    }

    LazyItem {
        id: attachment

        anchors.right: parent.right
        anchors.rightMargin: 17
        y: 12
        active: message.hasImage || message.hasAttachmentName

        MessageAttachment {
            hasImage: message.hasImage
            bytes: message.imagePreviewData
            hasName: message.hasAttachmentName
            name: message.attachmentName
            maximumWidth: message.maximumContentWidth
            textScale: message.textScale
            trackedItem: message.trackedItem
            onImageTapped: message.imageTapped(message.imagePreviewData)
        }
    }

    PlainMessageView {
        id: question

        anchors.right: parent.right
        anchors.rightMargin: 17
        y: 12 + attachment.height
        trackedItem: message.trackedItem
        wrapWidth: message.maximumContentWidth
        text: message.text
        points: 14.5 * message.textScale
        color: "white"
        selectionColor: Theme.accent
    }
}
