pragma ComponentBehavior: Bound
import QtQuick
import QtTest
import Aulora.Theme

FocusScope {
    id: root

    property bool sheetPresented: false
    property bool alertPresented: false

    width: 700
    height: 700
    focus: true

    PlainButton {
        id: behind

        objectName: "behind"
        width: 100
        height: 40
        text: "Detrás"
        contentItem: Label {
            text: "Detrás"
        }
    }

    TextInput {
        id: field

        y: 100
        width: 100
        focus: true
        activeFocusOnTab: true
    }

    ModalSheet {
        id: sheet

        title: "Configuración"
        presented: root.sheetPresented
        onDismissed: root.sheetPresented = false

        contentItem: Item {
            implicitWidth: 560
            implicitHeight: 600

            Column {
                PlainButton {
                    id: first

                    text: "Primero"
                    contentItem: Label {
                        text: "Primero"
                    }
                }

                PlainButton {
                    id: last

                    text: "Último"
                    contentItem: Label {
                        text: "Último"
                    }
                }
            }
        }
    }

    AlertDialog {
        id: alert

        title: "¿Borrar historial?"
        message: "Se eliminarán todas las conversaciones."
        buttons: [
            { text: "Borrar historial", role: "destructive" },
            { text: "Cancelar", role: "cancel" }
        ]
        presented: root.alertPresented
        onDismissed: root.alertPresented = false
    }

    SignalSpy {
        id: pressedBehind

        target: behind
        signalName: "clicked"
    }

    SignalSpy {
        id: picked

        target: alert
        signalName: "picked"
    }

    SignalSpy {
        id: dismissed

        target: alert
        signalName: "dismissed"
    }

    ViewTestCase {
        name: "ModalSheet"

        function init() {
            root.sheetPresented = false;
            root.alertPresented = false;
            tryCompare(sheet, "visible", false);
            tryCompare(alert, "visible", false);
            field.forceActiveFocus();
            pressedBehind.clear();
            picked.clear();
            dismissed.clear();
        }

        function present(dialog, flag) {
            root[flag] = true;
            tryCompare(dialog, "opened", true);
        }

        function buttonsOf(dialog) {
            return items(dialog.contentItem, item => item.prominent !== undefined);
        }

        function focusedButton(dialog) {
            return buttonsOf(dialog).find(button => button.activeFocus)?.text;
        }

        function test_isCentredAtItsSize() {
            present(sheet, "sheetPresented");
            compare(sheet.width, 560);
            compare(sheet.height, 600);
            compare(sheet.x, 70);
            compare(sheet.y, 50);
        }

        function test_keepsThePointerFromWhatLiesBehind() {
            present(sheet, "sheetPresented");
            mouseClick(behind);
            compare(pressedBehind.count, 0);
            verify(sheet.opened);
        }

        function test_keepsTheKeyboardAndGivesItBack() {
            present(sheet, "sheetPresented");
            const seen = [];
            for (let i = 0; i < 6; ++i) {
                keyClick(Qt.Key_Tab);
                verify(!behind.activeFocus && !field.activeFocus);
                seen.push(first.activeFocus ? "first" : last.activeFocus ? "last" : "none");
            }
            verify(seen.includes("first") && seen.includes("last"), seen);
            for (let i = 0; i < 6; ++i) {
                keyClick(Qt.Key_Backtab);
                verify(!behind.activeFocus && !field.activeFocus);
            }
            root.sheetPresented = false;
            tryCompare(sheet, "visible", false);
            verify(field.activeFocus);
        }

        function test_escapeAsksToDismiss() {
            present(sheet, "sheetPresented");
            keyClick(Qt.Key_Escape);
            compare(root.sheetPresented, false);
            tryCompare(sheet, "visible", false);
            verify(field.activeFocus);
            present(sheet, "sheetPresented");
        }

        function test_typedTextStaysOutOfTheWindow() {
            present(sheet, "sheetPresented");
            keyClick(Qt.Key_X);
            compare(field.text, "");
        }

        function test_alertOffersItsButtons() {
            present(alert, "alertPresented");
            compare(buttonsOf(alert).map(button => button.text), ["Borrar historial", "Cancelar"]);
            label(alert.contentItem, "¿Borrar historial?");
            label(alert.contentItem, "Se eliminarán todas las conversaciones.");
            const red = items(alert.contentItem, item => item.text === "Borrar historial" && item.color !== undefined);
            verifyColor(red[0].color, Theme.red);
        }

        function test_cancelIsTheDefault_data() {
            return [
                { tag: "return", key: Qt.Key_Return },
                { tag: "enter", key: Qt.Key_Enter },
                { tag: "space", key: Qt.Key_Space }
            ];
        }

        function test_cancelIsTheDefault(data) {
            present(alert, "alertPresented");
            compare(focusedButton(alert), "Cancelar");
            keyClick(data.key);
            compare(picked.count, 1);
            compare(picked.signalArguments[0][0], 1);
            compare(dismissed.count, 1);
            compare(root.alertPresented, false);
        }

        function test_destructiveButtonIsPicked() {
            present(alert, "alertPresented");
            mouseClick(buttonsOf(alert)[0]);
            compare(picked.count, 1);
            compare(picked.signalArguments[0][0], 0);
            compare(dismissed.count, 1);
            tryCompare(alert, "visible", false);
            verify(field.activeFocus);
        }

        function test_escapePicksNothing() {
            present(alert, "alertPresented");
            keyClick(Qt.Key_Escape);
            compare(picked.count, 0);
            compare(dismissed.count, 1);
            compare(root.alertPresented, false);
        }

        function test_tabReachesBothButtons() {
            present(alert, "alertPresented");
            keyClick(Qt.Key_Tab);
            compare(focusedButton(alert), "Borrar historial");
            keyClick(Qt.Key_Tab);
            compare(focusedButton(alert), "Cancelar");
        }

        function test_longTitleAndMessageStayInTheWindow() {
            const message = alert.message;
            alert.message = "Muy largo ".repeat(2000);
            present(alert, "alertPresented");
            verify(alert.height <= root.height, alert.height);
            verify(alert.y >= 0);
            const cancel = buttonsOf(alert)[1];
            verify(cancel.mapToItem(null, 0, cancel.height).y <= root.height);
            alert.message = message;
        }
    }
}
