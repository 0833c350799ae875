pragma ComponentBehavior: Bound

import QtQuick
import Aulora.Theme
import Aulora.Ui

/// The multi-line text field of the composer: it grows with its text from one line to five, then
/// scrolls. Return sends; with Shift or Alt it makes a new line.
FocusScope {
    id: field

    required property string text
    required property string placeholder

    readonly property int maximumLineCount: 5

    /// The greatest bulk that the text has had since it was replaced from outside: undo can bring
    /// that text back.
    property int bulk: ComposerRules.Ordinary

    signal textEdited(string text)
    signal submitted
    signal pasteRequested

    function pasteText() {
        prepareFor(ComposerRules.clipboardTextBulk(ComposerRules.Clipboard));
        edit.paste();
    }

    function prepareFor(bulk: int) {
        field.bulk = Math.max(field.bulk, bulk);
    }

    function insertNewLine() {
        edit.remove(edit.selectionStart, edit.selectionEnd);
        edit.insert(edit.cursorPosition, "\n");
    }

    function showCursor() {
        const rectangle = edit.cursorRectangle;
        const lowest = rectangle.y + rectangle.height - scroll.height;
        scroll.contentY = Math.max(lowest, Math.min(scroll.contentY, rectangle.y));
    }

    // Typing comes back through this property: an equal text is not set again, which would move the
    // cursor and clear the undo history.
    function takeText() {
        if (ComposerRules.writtenText(edit.textDocument) === text)
            return;
        bulk = ComposerRules.textBulk(text);
        edit.text = text;
        edit.cursorPosition = edit.length;
    }

    implicitHeight: scroll.height + 2 * 13
    onTextChanged: takeText()
    Component.onCompleted: takeText()

    ContinuousRectangle {
        objectName: "background"
        anchors.fill: parent
        radius: 20
        color: Theme.panelBackground
        borderColor: Theme.hairline
        borderWidth: 1
    }

    // A press on the margins around the text starts writing, too.
    MouseArea {
        anchors.fill: parent
        cursorShape: Qt.IBeamCursor
        onPressed: edit.forceActiveFocus(Qt.MouseFocusReason)
    }

    Label {
        objectName: "placeholder"
        // Beside the caret, not under it.
        x: 17 + 3
        y: 13
        width: scroll.width - 3
        text: field.placeholder
        points: 14
        color: Theme.secondary
        elide: Text.ElideRight
        visible: edit.length === 0 && edit.preeditText === ""
    }

    ScrollPane {
        id: scroll

        x: 17
        y: 13
        width: field.width - 2 * 17
        height: edit.contentHeight * Math.min(1, field.maximumLineCount / edit.lineCount)
        contentHeight: edit.contentHeight
        onHeightChanged: field.showCursor()

        TextEdit {
            id: edit

            objectName: "edit"
            width: scroll.width
            focus: true
            activeFocusOnTab: true
            textFormat: TextEdit.PlainText
            wrapMode: field.bulk === ComposerRules.Unbreakable ? TextEdit.WrapAnywhere : TextEdit.Wrap
            selectByMouse: true
            font: {
                const font = Theme.font(14, Font.Normal, 0);
                font.preferShaping = field.bulk === ComposerRules.Ordinary;
                return font;
            }
            color: Theme.primary
            selectionColor: Theme.selection
            selectedTextColor: Theme.primary
            Accessible.role: Accessible.EditableText
            Accessible.name: "Mensaje"
            Accessible.description: field.placeholder
            Accessible.multiLine: true
            onCursorRectangleChanged: field.showCursor()
            onTextChanged: {
                const written = ComposerRules.writtenText(edit.textDocument);
                field.prepareFor(ComposerRules.textBulk(written));
                ComposerRules.directParagraphs(edit.textDocument);
                if (written !== field.text)
                    field.textEdited(written);
            }

            MouseArea {
                anchors.fill: parent
                acceptedButtons: Qt.MiddleButton
                cursorShape: Qt.IBeamCursor
                // On X11 the TextEdit pastes the selection by itself.
                onPressed: event => {
                    field.prepareFor(ComposerRules.clipboardTextBulk(ComposerRules.Selection));
                    event.accepted = false;
                }
            }

            Keys.onPressed: event => {
                if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter) {
                    event.accepted = true;
                    if (edit.inputMethodComposing)
                        Qt.inputMethod.commit();
                    else if (event.modifiers & (Qt.ShiftModifier | Qt.AltModifier))
                        field.insertNewLine();
                    else
                        field.submitted();
                } else if (event.matches(StandardKey.Paste)) {
                    event.accepted = true;
                    field.pasteRequested();
                }
            }
            Keys.onTabPressed: edit.nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
            Keys.onBacktabPressed: edit.nextItemInFocusChain(false).forceActiveFocus(
                                       Qt.BacktabFocusReason)
        }
    }
}
