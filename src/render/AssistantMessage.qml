pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Render
import Aulora.Text
import Aulora.Theme

/// The assistant's side of a conversation: monogram, name, and the reply or the sign that it is
/// being written. The reply lies directly on the background of the chat. All but the reply is there
/// only near the visible part of the list.
Item {
    id: message

    property alias text: reply.text
    required property real textScale
    required property TrackedItem trackedItem

    readonly property bool isTyping: reply.isEmpty
    readonly property real avatarSize: 31
    readonly property real headerHeight: reply.lineHeight(11 * textScale, Font.DemiBold)
    readonly property real typingHeight: Math.max(12, reply.lineHeight(10 * textScale, Font.Normal))
    readonly property string author: "Aulora IA"
    readonly property string typingText: "Escribiendo…"

    function appendText(piece: string) {
        reply.appendText(piece);
    }

    implicitHeight: Math.max(avatarSize, reply.y + (isTyping ? typingHeight : reply.implicitHeight))

    Accessible.role: Accessible.Paragraph
    Accessible.name: isTyping ? typingText : reply.plainText
    Accessible.description: author

    MarkdownMessageView {
        id: reply

        x: message.avatarSize + 12
        y: message.headerHeight + 8
        // The row's spacing keeps the reply away from the trailing edge as well.
        width: Math.max(0, Math.min(680, message.width - x - 12))
        height: implicitHeight
        visible: !message.isTyping
        trackedItem: message.trackedItem
        wrapWidth: width
        textScale: message.textScale
        color: Theme.primary
        dotColor: Theme.accent
        selectionColor: Theme.selection
    }

    LazyItem {
        active: message.trackedItem.nearViewport

        AssistantMessageFrame {
            avatarSize: message.avatarSize
            textX: reply.x
            textY: reply.y
            textScale: message.textScale
            isTyping: message.isTyping
            author: message.author
            typingText: message.typingText
        }
    }
}
