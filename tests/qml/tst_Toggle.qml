import QtQuick
import QtTest
import Aulora.Theme

Item {
    id: root

    property bool preference: true

    width: 400
    height: 100

    Toggle {
        id: toggle

        width: 300
        text: "Análisis de imágenes"
        checked: root.preference
        onToggled: root.preference = checked
    }

    TestCase {
        name: "Toggle"
        when: windowShown

        function init() {
            root.preference = true;
        }

        function test_pressFlips() {
            mouseClick(toggle);
            compare(root.preference, false);
            compare(toggle.checked, false);
            mouseClick(toggle);
            compare(root.preference, true);
        }

        function test_followsThePreference() {
            mouseClick(toggle);
            root.preference = true;
            compare(toggle.checked, true);
        }

        function test_keysFlip_data() {
            return [
                { tag: "space", key: Qt.Key_Space },
                { tag: "return", key: Qt.Key_Return },
                { tag: "enter", key: Qt.Key_Enter }
            ];
        }

        function test_keysFlip(data) {
            toggle.forceActiveFocus(Qt.TabFocusReason);
            keyClick(data.key);
            compare(root.preference, false);
            keyClick(data.key);
            compare(root.preference, true);
        }

        function test_switchIsAtTheTrailingEnd() {
            compare(toggle.indicator.x + toggle.indicator.width, toggle.width);
            compare(toggle.contentItem.x, 0);
        }
    }
}
