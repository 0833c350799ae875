pragma ComponentBehavior: Bound

import QtQuick
import Aulora.Theme

/// The list of conversations; only visible rows exist. The list is one stop of the Tab key; the
/// arrow keys move within it, starting at the selected conversation.
ListView {
    id: list

    signal conversationChosen(var id)

    function focusNeighbour(reason: int) {
        if (currentItem)
            currentItem.forceActiveFocus(reason);
    }

    /// How far the list overlaps what is above it, so that the first row's focus ring is not
    /// clipped.
    readonly property int focusRingRoom: 5

    topMargin: focusRingRoom
    leftMargin: 8
    rightMargin: 8
    bottomMargin: 12
    spacing: 4
    clip: true
    interactive: false
    boundsBehavior: Flickable.StopAtBounds
    highlightMoveDuration: 0
    activeFocusOnTab: true
    Accessible.role: Accessible.List
    Accessible.name: "Conversaciones"

    delegate: ConversationRow {
        id: row

        required property int index
        required property var conversationID

        function becomeCurrent() {
            if (selected)
                makeCurrent.restart();
        }

        width: list.width - list.leftMargin - list.rightMargin
        focusPolicy: Qt.NoFocus
        onClicked: list.conversationChosen(row.conversationID)
        onSelectedChanged: becomeCurrent()
        Component.onCompleted: becomeCurrent()

        // ListView shifts its current index for inserted rows only after it has made them, so this
        // has to wait.
        Delay {
            id: makeCurrent

            interval: 0
            onTriggered: list.currentIndex = row.index
        }
    }

    Keys.onUpPressed: {
        decrementCurrentIndex();
        focusNeighbour(Qt.BacktabFocusReason);
    }
    Keys.onDownPressed: {
        incrementCurrentIndex();
        focusNeighbour(Qt.TabFocusReason);
    }

    ScrollControls {
        flickable: list
    }
}
