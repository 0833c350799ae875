pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Render
import Aulora.Text
import Aulora.Theme

/// The thumbnail of an attached image and its name, one above the other at the trailing edge, each
/// with the space below it.
Item {
    id: attachment

    required property bool hasImage
    required property var bytes
    required property bool hasName
    required property string name
    required property real maximumWidth
    required property real textScale
    required property TrackedItem trackedItem

    signal imageTapped

    readonly property real spacing: 8
    readonly property real thumbnailHeight: thumbnail.height > 0 ? thumbnail.height + spacing : 0

    width: Math.max(thumbnail.width, nameRow.width)
    height: thumbnailHeight + (hasName ? nameRow.height + spacing : 0)

    LazyItem {
        id: thumbnail

        anchors.right: parent.right
        active: attachment.hasImage

        PreviewThumbnail {
            bytes: attachment.bytes
            nearViewport: attachment.trackedItem.nearViewport
            onClicked: attachment.imageTapped()
        }
    }

    LazyItem {
        id: nameRow

        anchors.right: parent.right
        y: attachment.thumbnailHeight
        active: attachment.hasName

        // Shown as it is, and not to be selected.
        PlainMessageView {
            objectName: "attachmentName"
            enabled: false
            trackedItem: attachment.trackedItem
            wrapWidth: attachment.maximumWidth
            text: attachment.name
            points: 9.5 * attachment.textScale
            color: Theme.atOpacity("white", 0.72)
        }
    }
}
