pragma ComponentBehavior: Bound

import QtQuick
import QtTest
import Aulora.Test
import Aulora.Theme
import Aulora.Ui

Item {
    id: root

    /// Stands for the state that the bar is bound to.
    property string messageText
    property bool hasImage
    property bool imageAnalysisEnabled
    property bool isLoading

    width: 900
    height: 400

    Component {
        id: component

        ComposerBar {
            width: 800
            focus: true
            text: root.messageText
            hasImage: root.hasImage
            imagePreview: ""
            imageName: "placa.png"
            imageAnalysisEnabled: root.imageAnalysisEnabled
            isLoading: root.isLoading
            onTextEdited: text => root.messageText = text
            onPasteRequested: pasteText()
        }
    }

    SampleInputMethod {
        id: inputMethod
    }

    TextEdit {
        id: clipboardWriter

        visible: false
        textFormat: TextEdit.PlainText
    }

    SignalSpy {
        id: sent

        signalName: "sendRequested"
    }

    SignalSpy {
        id: attached

        signalName: "attachRequested"
    }

    ViewTestCase {
        name: "ComposerBar"

        property ComposerBar bar: null
        property TextEdit edit: null

        function init() {
            root.messageText = "";
            root.hasImage = false;
            root.imageAnalysisEnabled = true;
            root.isLoading = false;
            bar = createTemporaryObject(component, root);
            edit = child(bar, "edit");
            edit.forceActiveFocus();
            sent.target = bar;
            sent.clear();
            attached.target = bar;
            attached.clear();
        }

        function cleanup() {
            Theme.appearanceRawValue = "light";
        }

        function type(text) {
            for (const letter of text)
                keyClick(letter);
        }

        function copy(text) {
            clipboardWriter.text = text;
            clipboardWriter.selectAll();
            clipboardWriter.copy();
        }

        function test_layout_data() {
            return schemes;
        }
        function test_layout(scheme) {
            useScheme(scheme);
            const field = child(bar, "field");
            const background = child(field, "background");
            const send = child(bar, "send");
            const attach = child(bar, "attach");

            compare(send.width, 43);
            compare(send.height, 43);
            compare(rectangle(send, bar).x + 43, 800);
            verify(rectangle(attach, bar).x >= 0);
            verify(rectangle(attach, bar).x + attach.width <= rectangle(field, bar).x);
            verify(rectangle(field, bar).x + field.width <= rectangle(send, bar).x);

            compare(background.radius, 20);
            compare(background.borderWidth, 1);
            compare(background.width, field.width);
            compare(background.height, field.height);
            verifyColor(background.color, panelBackground(scheme));
            verifyColor(background.borderColor, primaryAt(scheme, 0.07));

            const place = rectangle(edit, field);
            compare(place.x, 17);
            compare(place.y, 13);
            compare(place.width, field.width - 2 * 17);
            compare(field.height, edit.contentHeight + 2 * 13);
            verifyClose(edit.font.pointSize * Screen.logicalPixelDensity * 25.4 / 72, 14, "size");
            compare(edit.font.weight, Font.Normal);
            verifyColor(edit.color, primaryAt(scheme, 1));
            compare(edit.textFormat, TextEdit.PlainText);

            const arrow = symbol(send, "arrow.up");
            verifySymbol(arrow, 15, Font.Bold);
            verifyColor(arrow.color, Qt.rgba(1, 1, 1, 1));
        }

        function test_disclaimer_data() {
            return schemes;
        }
        function test_disclaimer(scheme) {
            useScheme(scheme);
            const shield = symbol(bar, "shield.checkered");
            const text = label(bar, "Herramienta educativa. Verificá la información médica relevante.");
            compare(shield.size, 8);
            verify(rectangle(shield, bar).x < rectangle(text, bar).x);
            verify(rectangle(text, bar).y >= rectangle(child(bar, "field"), bar).y + 43);
        }

        function test_names() {
            compare(accessibleName(edit), "Mensaje");
            compare(edit.Accessible.role, Accessible.EditableText);
            compare(edit.Accessible.description, "Preguntale a Aulora IA...");
            compare(accessibleName(child(bar, "attach")), "Adjuntar imagen");
            compare(accessibleName(child(bar, "send")), "Enviar");
        }

        function test_placeholder() {
            const placeholder = child(bar, "placeholder");
            compare(placeholder.text, "Preguntale a Aulora IA...");
            compare(placeholder.visible, true);
            const caret = edit.mapToItem(bar, edit.cursorRectangle);
            verify(rectangle(placeholder, bar).x >= caret.x + caret.width + 2, "beside the caret");
            root.hasImage = true;
            compare(placeholder.text, "Preguntá sobre la imagen...");
            compare(edit.Accessible.description, "Preguntá sobre la imagen...");
            root.imageAnalysisEnabled = false;
            compare(placeholder.text, "Preguntale a Aulora IA...");
            root.imageAnalysisEnabled = true;
            root.hasImage = false;
            compare(placeholder.text, "Preguntale a Aulora IA...");
            keyClick("a");
            compare(placeholder.visible, false);
            keyClick(Qt.Key_Backspace);
            compare(placeholder.visible, true);
        }

        function test_canSend_data() {
            return [
                { tag: "nothing", text: "", image: false, analysis: true, loading: false, can: false },
                { tag: "blanks", text: " \n ", image: false, analysis: true, loading: false, can: false },
                { tag: "text", text: "hola", image: false, analysis: true, loading: false, can: true },
                { tag: "text while loading", text: "hola", image: false, analysis: true, loading: true, can: false },
                { tag: "image alone", text: "", image: true, analysis: true, loading: false, can: true },
                { tag: "image while loading", text: "", image: true, analysis: true, loading: true, can: false },
                { tag: "image, analysis off", text: "", image: true, analysis: false, loading: false, can: false }
            ];
        }
        function test_canSend(data) {
            root.messageText = data.text;
            root.hasImage = data.image;
            root.imageAnalysisEnabled = data.analysis;
            root.isLoading = data.loading;
            const send = child(bar, "send");
            for (const scheme of schemes) {
                useScheme(scheme);
                compare(bar.canSend, data.can);
                compare(send.enabled, data.can);
                const gray = Qt.color(scheme.gray);
                verifyColor(send.background.color,
                            data.can ? accentAt(1) : Qt.rgba(gray.r, gray.g, gray.b, 0.22));
            }
            mouseClick(send);
            compare(sent.count, data.can ? 1 : 0);
        }

        function test_attach() {
            const attach = child(bar, "attach");
            mouseClick(attach);
            compare(attached.count, 1);
            root.imageAnalysisEnabled = false;
            mouseClick(attach);
            compare(attached.count, 1);
            compare(root.messageText, "");
        }

        function test_tooltips() {
            verifyTooltip(child(bar, "attachTooltip"), child(bar, "attach"), "Adjuntar imagen", root);
            verifyTooltip(child(bar, "sendTooltip"), child(bar, "send"), "Enviar", root);
        }

        function test_tooltipGoesWithAPress() {
            root.messageText = "hola";
            const send = child(bar, "send");
            const tooltip = child(bar, "sendTooltip");
            mouseMove(send, 20, 20);
            tryVerify(() => tooltip.popup?.opened ?? false);
            mouseClick(send);
            compare(sent.count, 1);
            tryCompare(tooltip.popup, "visible", false);
            mouseMove(root, root.width - 1, root.height - 1);
        }

        function test_selectionCanBeSeen_data() {
            return schemes;
        }
        function test_selectionCanBeSeen(scheme) {
            useScheme(scheme);
            verifyColor(edit.selectionColor, accentAt(scheme.tag === "dark" ? 1 : 0.25));
            verifyColor(edit.selectedTextColor, primaryAt(scheme, 1));
        }

        function test_returnSends_data() {
            return [
                { tag: "return", key: Qt.Key_Return, modifiers: Qt.NoModifier },
                { tag: "keypad enter", key: Qt.Key_Enter, modifiers: Qt.KeypadModifier }
            ];
        }
        function test_returnSends(data) {
            type("hola");
            keyClick(data.key, data.modifiers);
            compare(sent.count, 1);
            compare(root.messageText, "hola");
        }

        function test_newLine_data() {
            return [
                { tag: "shift return", key: Qt.Key_Return, modifiers: Qt.ShiftModifier },
                { tag: "alt return", key: Qt.Key_Return, modifiers: Qt.AltModifier },
                { tag: "shift enter", key: Qt.Key_Enter, modifiers: Qt.ShiftModifier | Qt.KeypadModifier },
                { tag: "alt enter", key: Qt.Key_Enter, modifiers: Qt.AltModifier | Qt.KeypadModifier }
            ];
        }
        function test_newLine(data) {
            type("ab");
            keyClick(Qt.Key_Left);
            keyClick(data.key, data.modifiers);
            compare(sent.count, 0);
            compare(root.messageText, "a\nb");
            compare(edit.cursorPosition, 2);
            edit.selectAll();
            keyClick(data.key, data.modifiers);
            compare(root.messageText, "\n");
        }

        function test_returnWhileComposing_data() {
            return [
                { tag: "return", modifiers: Qt.NoModifier },
                { tag: "shift return", modifiers: Qt.ShiftModifier },
                { tag: "alt return", modifiers: Qt.AltModifier }
            ];
        }
        function test_returnWhileComposing(data) {
            type("cl");
            inputMethod.compose("´");
            compare(edit.inputMethodComposing, true);
            keyClick(Qt.Key_Return, data.modifiers);
            compare(sent.count, 0);
            compare(root.messageText, "cl");
            inputMethod.commit("í");
            compare(root.messageText, "clí");
            keyClick(Qt.Key_Return);
            compare(sent.count, 1);
        }

        function test_composingHidesThePlaceholder() {
            inputMethod.compose("´");
            compare(child(bar, "placeholder").visible, false);
            compare(bar.canSend, false);
            inputMethod.compose("");
            compare(child(bar, "placeholder").visible, true);
        }

        function test_pressBesideTheTextStartsWriting() {
            root.forceActiveFocus();
            compare(edit.activeFocus, false);
            mouseClick(child(bar, "field"), 5, 5);
            compare(edit.activeFocus, true);
        }

        function test_submitWithNothingToSend() {
            keyClick(Qt.Key_Return);
            compare(root.messageText, "");
            type("  ");
            keyClick(Qt.Key_Return);
            compare(root.messageText, "  ");
            compare(sent.count, 0);
            root.isLoading = true;
            type("otra");
            keyClick(Qt.Key_Return);
            compare(root.messageText, "  otra");
            compare(sent.count, 0);
        }

        function test_keepsEveryCharacter() {
            inputMethod.commit("500\u00A0mg\u2028y 5\u00A0ml");
            compare(root.messageText, "500\u00A0mg\u2028y 5\u00A0ml");
            root.messageText = "1\u00A0g";
            compare(root.messageText, "1\u00A0g");
            type("x");
            compare(root.messageText, "1\u00A0gx");
        }

        function test_direction_data() {
            return [
                { tag: "Spanish", text: "hola", rightToLeft: false },
                { tag: "Hebrew", text: "שלום", rightToLeft: true },
                { tag: "an emoji, then Spanish", text: "\u{1F600} hola", rightToLeft: false },
                { tag: "an emoji, then Hebrew", text: "\u{1F600} שלום hola", rightToLeft: true },
                { tag: "a digit, then Hebrew", text: "1 שלום", rightToLeft: true }
            ];
        }
        function test_direction(data) {
            const runsLeft = (from, to) => edit.positionToRectangle(from).x > edit.positionToRectangle(to).x;
            root.messageText = data.text;
            compare(runsLeft(0, edit.length), data.rightToLeft);
            root.messageText = "hola\n" + data.text;
            compare(runsLeft(0, 4), false);
            compare(runsLeft(5, edit.length), data.rightToLeft);
            compare(root.messageText, "hola\n" + data.text);
        }

        function test_directionFollowsWhatIsTyped() {
            inputMethod.commit("\u{1F600} שלום");
            const runsLeft = () => edit.positionToRectangle(0).x > edit.positionToRectangle(edit.length).x;
            compare(runsLeft(), true);
            edit.cursorPosition = 0;
            inputMethod.commit("hola ");
            compare(runsLeft(), false);
            compare(root.messageText, "hola \u{1F600} שלום");
            while (edit.canUndo)
                edit.undo();
            compare(root.messageText, "");
        }

        function test_typingWhileLoading() {
            root.isLoading = true;
            type("otra");
            compare(root.messageText, "otra");
            compare(child(bar, "send").enabled, false);
        }

        function test_replacementPutsTheCaretAtTheEnd() {
            type("hola");
            root.messageText = "Explicame paso a paso: ";
            compare(edit.text, "Explicame paso a paso: ");
            compare(edit.cursorPosition, 23);
            type("x");
            compare(root.messageText, "Explicame paso a paso: x");
            root.messageText = "";
            compare(edit.text, "");
        }

        function test_typingKeepsTheCaret() {
            type("hla");
            keyClick(Qt.Key_Left);
            keyClick(Qt.Key_Left);
            type("o");
            compare(root.messageText, "hola");
            compare(edit.cursorPosition, 2);
        }

        function test_undo() {
            type("hola");
            edit.selectAll();
            keyClick(Qt.Key_Delete);
            compare(root.messageText, "");
            keySequence(StandardKey.Undo);
            compare(root.messageText, "hola");
            keySequence(StandardKey.Redo);
            compare(root.messageText, "");
        }

        function test_growsToFiveLines() {
            const field = child(bar, "field");
            const line = field.height - 2 * 13;
            let text = "1";
            for (let lines = 2; lines <= 8; ++lines) {
                text += "\n" + lines;
                root.messageText = text;
                compare(edit.lineCount, lines);
                verifyClose(field.height, Math.min(lines, 5) * line + 2 * 13, lines + " lines");
            }
            const cursor = edit.mapToItem(field, edit.cursorRectangle);
            verify(cursor.y >= 13 - 0.5 && cursor.y + cursor.height <= field.height - 13 + 0.5,
                   "the caret's line shows");

            edit.cursorPosition = 0;
            compare(rectangle(edit, field).y, 13);
        }

        function test_wrapsAtWords() {
            root.messageText = "palabra ".repeat(100);
            verify(edit.lineCount > 5);
            compare(edit.wrapMode, TextEdit.Wrap);
            verify(edit.contentWidth <= edit.width);
        }

        function test_wrapsBulkyTextTheQuickWay_data() {
            return [
                { tag: "one stretch", text: "x".repeat(100000), wrapMode: TextEdit.WrapAnywhere },
                { tag: "words", text: "palabra ".repeat(12500), wrapMode: TextEdit.Wrap },
                { tag: "lines", text: "palabra otra\n".repeat(8000), wrapMode: TextEdit.Wrap }
            ];
        }
        function test_wrapsBulkyTextTheQuickWay(data) {
            copy(data.text);
            keySequence(StandardKey.Paste);
            waitForRendering(bar);
            compare(root.messageText.length, data.text.length);
            // Wrapped at words and with kerning, the first would take several seconds.
            compare(edit.wrapMode, data.wrapMode);
            compare(edit.font.preferShaping, false);

            keySequence(StandardKey.Undo);
            compare(edit.wrapMode, data.wrapMode, "undo may bring it back");
            keySequence(StandardKey.Redo);
            compare(root.messageText.length, data.text.length);

            root.messageText = "";
            compare(edit.wrapMode, TextEdit.Wrap);
            compare(edit.font.preferShaping, true);

            root.messageText = data.text;
            compare(edit.wrapMode, data.wrapMode);
            compare(edit.font.preferShaping, false);
        }

        function test_pastesPlainText() {
            copy("dos\nlíneas <b>y</b> más");
            keySequence(StandardKey.Paste);
            compare(root.messageText, "dos\nlíneas <b>y</b> más");
            compare(edit.lineCount, 2);
        }

        function test_tabLeavesTheField() {
            type("hola");
            keyClick(Qt.Key_Tab);
            compare(edit.activeFocus, false);
            compare(child(bar, "send").activeFocus, true);
            keyClick(Qt.Key_Backtab);
            compare(edit.activeFocus, true);
            keyClick(Qt.Key_Backtab);
            compare(child(bar, "attach").activeFocus, true);
            compare(root.messageText, "hola");
        }
    }
}
