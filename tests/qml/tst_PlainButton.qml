import QtQuick
import QtTest
import Aulora.Theme

FocusScope {
    id: root

    width: 300
    height: 200
    focus: true

    TextInput {
        id: field

        focus: true
        activeFocusOnTab: true
        width: 100
        text: "escribiendo"
    }

    PlainButton {
        id: button

        y: 60
        text: "Nueva conversación"
        focusRadius: 11
        contentItem: Label {
            text: "Nueva"
        }
        background: ContinuousRectangle {
            radius: 11
        }
    }

    PlainButton {
        id: second

        y: 120
        text: "Otra"
        contentItem: Label {
            text: "Otra"
        }
    }

    SignalSpy {
        id: clicked

        target: button
        signalName: "clicked"
    }

    ViewTestCase {
        name: "PlainButton"

        function init() {
            button.enabled = true;
            field.forceActiveFocus();
            clicked.clear();
        }

        function test_keysPressIt_data() {
            return [
                { tag: "space", key: Qt.Key_Space },
                { tag: "return", key: Qt.Key_Return },
                { tag: "enter", key: Qt.Key_Enter }
            ];
        }

        function test_keysPressIt(data) {
            keyClick(Qt.Key_Tab);
            verify(button.activeFocus);
            keyClick(data.key);
            compare(clicked.count, 1);
        }

        function test_returnPressesWhateverGaveTheFocus() {
            button.forceActiveFocus(Qt.PopupFocusReason);
            keyClick(Qt.Key_Return);
            compare(clicked.count, 1);
        }

        function test_otherKeysDoNot() {
            keyClick(Qt.Key_Tab);
            keyClick(Qt.Key_A);
            keyClick(Qt.Key_Escape);
            compare(clicked.count, 0);
        }

        function test_pressLeavesTheFocusWhereItIs() {
            mouseClick(button);
            compare(clicked.count, 1);
            verify(field.activeFocus);
        }

        function test_isDimmedWhilePressed() {
            compare(button.opacity, 1);
            mousePress(button);
            verify(button.opacity < 1);
            mouseRelease(button);
            compare(button.opacity, 1);
        }

        function test_ringShowsKeyboardFocusOnly() {
            const ring = items(button, item => item.borderWidth > 0)[0];
            button.forceActiveFocus(Qt.MouseFocusReason);
            verify(!ring.visible);
            field.forceActiveFocus();
            keyClick(Qt.Key_Tab);
            verify(ring.visible);
            verify(ring.width > button.width && ring.height > button.height);
            verify(ring.radius > button.focusRadius);
            verify(ring.borderColor.a > 0.5);
            keyClick(Qt.Key_Tab);
            verify(second.activeFocus);
            verify(!ring.visible);
        }

        function test_disabledDoesNothing() {
            button.enabled = false;
            mouseClick(button);
            keyClick(Qt.Key_Tab);
            verify(second.activeFocus);
            compare(clicked.count, 0);
        }
    }
}
