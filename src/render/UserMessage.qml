pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Render
import Aulora.Theme

// The user's side of a conversation: a black bubble at the trailing edge with the attached image,
// its name and the question.
Item {
    id: message

    required property string text
    required property bool hasAttachmentName
    required property string attachmentName
    required property var imagePreviewData
    required property real textScale
    required property bool showImagePreview
    required property bool nearViewport

    signal imageTapped(bytes: var)

    readonly property real spacing: 8
    readonly property real contentWidth: Math.max(0, Math.min(610, width - 110) - 2 * bubble.padding)
    readonly property real nameTop: bubble.verticalPadding + (thumbnail.height > 0 ? thumbnail.height + spacing : 0)
    readonly property real textTop: nameTop + (name.active ? name.height + spacing : 0)

    implicitHeight: bubble.height

    Accessible.role: Accessible.Paragraph
    Accessible.name: question.plainText
    Accessible.description: attachmentName

    Item {
        id: bubble

        readonly property real padding: 17
        readonly property real verticalPadding: 12

        anchors.right: parent.right
        width: Math.max(question.implicitWidth, name.width, thumbnail.width) + 2 * padding
        height: message.textTop + question.implicitHeight + verticalPadding

        LazyItem {
            anchors.fill: parent
            active: message.nearViewport

            ContinuousRectangle {
                anchors.fill: parent
                radius: 18
                color: "black"
            }
        }

        LazyItem {
            id: thumbnail

            anchors.right: parent.right
            anchors.rightMargin: bubble.padding
            y: bubble.verticalPadding
            active: message.showImagePreview && message.imagePreviewData.byteLength > 0

            PreviewThumbnail {
                bytes: message.imagePreviewData
                nearViewport: message.nearViewport
                onClicked: message.imageTapped(message.imagePreviewData)
            }
        }

        LazyItem {
            id: name

            anchors.right: parent.right
            anchors.rightMargin: bubble.padding
            y: message.nameTop
            active: message.hasAttachmentName

            PlainMessageView {
                enabled: false
                wrapWidth: message.contentWidth
                text: message.attachmentName
                points: 9.5 * message.textScale
                color: Theme.atOpacity("white", 0.72)
            }
        }

        PlainMessageView {
            id: question

            anchors.right: parent.right
            anchors.rightMargin: bubble.padding
            y: message.textTop
            wrapWidth: message.contentWidth
            text: message.text
            points: 14.5 * message.textScale
            color: "white"
            selectionColor: Theme.accent
        }
    }
}
