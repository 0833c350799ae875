pragma ComponentBehavior: Bound
import QtQuick
import QtTest
import Aulora.Theme

FocusScope {
    id: root

    width: 300
    height: 200
    focus: true

    ScrollPane {
        id: pane

        anchors.fill: parent
        focus: true

        Column {
            width: pane.width

            TextEdit {
                id: text

                width: parent.width
                height: 40
                readOnly: true
                selectByMouse: true
                textFormat: TextEdit.PlainText
                text: "La mitocondria produce la mayor parte del ATP."
            }

            Repeater {
                id: buttons

                model: 20

                PlainButton {
                    required property int index

                    width: 200
                    height: 50
                    text: "Botón " + index
                    contentItem: Label {
                        text: "Botón"
                    }
                }
            }
        }
    }

    TestCase {
        name: "ScrollPane"
        when: windowShown

        readonly property real end: 40 + 20 * 50 - 200

        function init() {
            pane.contentY = 0;
            pane.forceActiveFocus();
            text.deselect();
        }

        function test_isAsHighAsItsContent() {
            compare(pane.contentHeight, 40 + 20 * 50);
        }

        function test_wheelScrollsAndStopsAtTheEnds() {
            mouseWheel(pane, 50, 50, 0, -120);
            verify(pane.contentY > 20 && pane.contentY < 200, pane.contentY);
            for (let i = 0; i < 60; ++i)
                mouseWheel(pane, 50, 50, 0, -120);
            compare(pane.contentY, end);
            for (let i = 0; i < 60; ++i)
                mouseWheel(pane, 50, 50, 0, 120);
            compare(pane.contentY, 0);
        }

        function test_keysScroll() {
            keyClick(Qt.Key_PageDown);
            verify(pane.contentY > 150 && pane.contentY < 200);
            keyClick(Qt.Key_PageUp);
            compare(pane.contentY, 0);
            keyClick(Qt.Key_End);
            compare(pane.contentY, end);
            keyClick(Qt.Key_Home);
            compare(pane.contentY, 0);
        }

        function test_dragSelectsInsteadOfScrolling() {
            mousePress(text, 2, 6);
            mouseMove(text, 60, 6);
            mouseMove(text, 150, 8);
            mouseRelease(text, 150, 8);
            verify(text.selectedText.length > 3, text.selectedText);
            compare(pane.contentY, 0);
            mouseDrag(pane, 250, 180, 0, -150);
            compare(pane.contentY, 0);
        }

        function test_showsTheControlTheKeyboardMovedTo() {
            buttons.itemAt(15).forceActiveFocus(Qt.TabFocusReason);
            tryVerify(() => pane.contentY > 0);
            const top = buttons.itemAt(15).mapToItem(pane, 0, 0).y;
            verify(top >= 0 && top + 50 <= pane.height, top);
            buttons.itemAt(0).forceActiveFocus(Qt.BacktabFocusReason);
            tryVerify(() => buttons.itemAt(0).mapToItem(pane, 0, 0).y >= 0);
        }

        function test_doesNotMoveForAControlThePointerPressed() {
            pane.contentY = 20;
            buttons.itemAt(15).forceActiveFocus(Qt.MouseFocusReason);
            waitForRendering(pane, 200);
            compare(pane.contentY, 20);
        }
    }
}
