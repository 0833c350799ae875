pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Aulora.Render
import Aulora.State
import Aulora.Text
import Aulora.Theme
import Aulora.Ui

/// The messages of the selected conversation, or the study home while there is none. It follows
/// what is new to the end of the list.
ScrollPane {
    id: pane

    required property MessageListModel messages
    required property bool isLoading
    required property bool replyHasStarted
    required property real textScale
    required property bool showImagePreviews
    /// What an empty conversation shows, as wide as the list.
    required property Component studyHome

    readonly property bool showsThinkingRow: isLoading && !replyHasStarted

    /// The thumbnail of a message was pressed; `bytes` are its image.
    signal imageTapped(bytes: var)

    contentHeight: stack.height

    onIsLoadingChanged: {
        if (observers.enabled)
            scroller.scrollToBottom();
    }

    // The visible part of the list, which takes the focus so that keys can scroll it. A press
    // beside the messages gives it the focus too, which ends a selection in a message.
    T.Pane {
        id: visiblePart

        readonly property bool isStop: pane.contentHeight > pane.height

        objectName: "visiblePart"
        y: pane.contentY
        width: pane.width
        height: pane.height
        focusPolicy: isStop ? Qt.StrongFocus : Qt.ClickFocus
        Accessible.name: "Conversación"
        Accessible.ignored: !isStop
    }

    FocusRing {
        parent: pane
        control: visiblePart
        isInside: true
        innerRadius: 10
    }

    Column {
        id: stack

        width: pane.width
        leftPadding: 32
        rightPadding: leftPadding
        topPadding: 22
        bottomPadding: topPadding
        spacing: 23

        readonly property real availableWidth: width - leftPadding - rightPadding

        LazyItem {
            active: pane.messages.count === 0
            visible: active
            component: pane.studyHome
            onItemChanged: {
                if (item)
                    item.width = Qt.binding(() => stack.availableWidth);
            }
        }

        Repeater {
            model: pane.messages

            MessageBubble {
                tracker: viewportTracker
                width: stack.availableWidth
                height: implicitHeight
                textScale: pane.textScale
                showImagePreview: pane.showImagePreviews
                onImageTapped: bytes => pane.imageTapped(bytes)
            }
        }

        LazyItem {
            objectName: "thinking"
            active: pane.showsThinkingRow
            visible: active

            ActivityRow {}
        }

        Item {
            id: bottom

            objectName: "bottom"
            width: stack.availableWidth
            height: 1
        }
    }

    ViewportTracker {
        id: viewportTracker

        flickable: pane
        content: stack
    }

    Connections {
        id: observers

        target: pane.messages
        enabled: false

        function onChanged() {
            scroller.scrollToBottom();
        }
    }

    // The messages that the pane is first shown with are no change to scroll for.
    Component.onCompleted: observers.enabled = true

    onTextScaleChanged: anchor.hold()
    onShowImagePreviewsChanged: anchor.hold()

    ScrollAnchor {
        id: anchor

        flickable: pane
        content: stack
        end: bottom
    }

    BottomScroller {
        id: scroller

        flickable: pane
        end: bottom
    }
}
