pragma ComponentBehavior: Bound

import QtQuick
import Aulora.Chooser
import Aulora.Theme

/// A folder's contents, made into pictures as far as they are seen. The grid is one stop of the Tab
/// key; the arrow keys move within it.
GridView {
    id: grid

    required property FolderModel folder

    /// Asks for the selected one to be opened or taken.
    signal activated

    readonly property bool hasSelection: currentItem !== null

    function select(index: int, reason: int) {
        currentIndex = index;
        const item = currentItem as FolderItem;
        item?.forceActiveFocus(reason);
        // A view gives its current item the keyboard by itself, for no reason.
        if (item)
            item.focusReason = reason;
    }

    /// Selects what is so many places further on, or as far as that goes.
    function moveBy(step: int) {
        if (count > 0)
            select(currentIndex < 0 ? 0 : Math.max(0, Math.min(count - 1, currentIndex + step)), Qt.TabFocusReason);
    }

    readonly property int margin: 12
    /// Between one and the next; the ring of the keyboard shows in it.
    readonly property int gap: 6
    readonly property int columns: Math.max(1, Math.floor((width - 2 * margin + gap) / 134))

    leftMargin: margin
    topMargin: margin
    bottomMargin: margin
    cellWidth: Math.floor((width - 2 * margin + gap) / columns)
    cellHeight: 138
    clip: true
    interactive: false
    boundsBehavior: Flickable.StopAtBounds
    highlightMoveDuration: 0
    currentIndex: -1
    activeFocusOnTab: true
    model: folder
    Accessible.role: Accessible.List
    Accessible.name: "Archivos"

    delegate: FolderItem {
        required property int index

        width: grid.cellWidth - grid.gap
        height: grid.cellHeight - grid.gap
        highlighted: GridView.isCurrentItem
        focusPolicy: Qt.NoFocus
        onClicked: grid.select(index, Qt.MouseFocusReason)
        onActivated: {
            grid.select(index, Qt.MouseFocusReason);
            grid.activated();
        }
    }

    Keys.onReturnPressed: activated()
    Keys.onEnterPressed: activated()
    Keys.onPressed: event => {
        const page = columns * Math.max(1, Math.floor(height / cellHeight));
        const steps = {
            [Qt.Key_Left]: -1,
            [Qt.Key_Right]: 1,
            [Qt.Key_Up]: -columns,
            [Qt.Key_Down]: columns,
            [Qt.Key_PageUp]: -page,
            [Qt.Key_PageDown]: page,
            [Qt.Key_Home]: -count,
            [Qt.Key_End]: count
        };
        const step = steps[event.key];
        event.accepted = step !== undefined && !(event.modifiers & Qt.AltModifier);
        if (event.accepted)
            moveBy(step);
    }

    ScrollControls {
        flickable: grid
    }
}
