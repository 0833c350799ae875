pragma ComponentBehavior: Bound

import QtQuick
import Aulora.Theme

/// The multi-line text field of the composer: it grows with its text from one line to five, then
/// scrolls. Return sends; with Shift or Alt it makes a new line.
FocusScope {
    id: field

    required property string text
    required property string placeholder

    readonly property int maximumLineCount: 5

    /// Once the text has held a stretch too long to be wrapped at words, it is wrapped anywhere
    /// until it is replaced from outside: undo may bring the stretch back.
    property bool wrapsAnywhere: false

    signal textEdited(string text)
    signal submitted
    signal pasteRequested

    function pasteText() {
        if (ComposerRules.clipboardHasUnbreakableStretch(ComposerRules.Clipboard))
            wrapsAnywhere = true;
        edit.paste();
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

    // Only what differs is taken over, so that the person's own typing, which comes back through
    // this property, leaves caret and undo history alone.
    function takeText() {
        if (edit.text === text)
            return;
        wrapsAnywhere = ComposerRules.hasUnbreakableStretch(text);
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

    Label {
        objectName: "placeholder"
        x: 17
        y: 13
        width: scroll.width
        text: field.placeholder
        points: 14
        color: Theme.secondary
        elide: Text.ElideRight
        visible: edit.length === 0 && edit.preeditText === ""
    }

    Flickable {
        id: scroll

        x: 17
        y: 13
        width: field.width - 2 * 17
        height: edit.contentHeight * Math.min(1, field.maximumLineCount / edit.lineCount)
        contentHeight: edit.contentHeight
        clip: true
        onHeightChanged: field.showCursor()

        TextEdit {
            id: edit

            objectName: "edit"
            width: scroll.width
            focus: true
            activeFocusOnTab: true
            textFormat: TextEdit.PlainText
            wrapMode: field.wrapsAnywhere ? TextEdit.WrapAnywhere : TextEdit.Wrap
            selectByMouse: true
            font: Theme.font(14, Font.Normal, 0)
            color: Theme.primary
            selectionColor: Theme.accentAt(0.24)
            selectedTextColor: Theme.primary
            Accessible.role: Accessible.EditableText
            Accessible.name: "Mensaje"
            Accessible.description: field.placeholder
            Accessible.multiLine: true
            onCursorRectangleChanged: field.showCursor()
            onTextChanged: {
                if (!field.wrapsAnywhere && ComposerRules.hasUnbreakableStretch(text))
                    field.wrapsAnywhere = true;
                if (text !== field.text)
                    field.textEdited(text);
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
