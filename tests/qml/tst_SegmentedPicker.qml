pragma ComponentBehavior: Bound
import QtQuick
import QtTest
import Aulora.Theme

Item {
    id: root

    property string value: "standard"

    width: 400
    height: 100

    SegmentedPicker {
        id: picker

        width: 360
        label: "Tamaño"
        model: [
            { label: "Compacto", value: "compact" },
            { label: "Normal", value: "standard" },
            { label: "Grande", value: "large" }
        ]
        currentValue: root.value
        onPicked: value => root.value = value
    }

    SignalSpy {
        id: picked

        target: picker
        signalName: "picked"
    }

    ViewTestCase {
        name: "SegmentedPicker"

        function init() {
            root.value = "standard";
            picked.clear();
        }

        function segments() {
            return items(picker, item => item.focusRadius !== undefined);
        }

        function selection() {
            return segments().filter(segment => segment.checked).map(segment => segment.text);
        }

        function test_showsItsModel() {
            compare(segments().map(segment => segment.text), ["Compacto", "Normal", "Grande"]);
            compare(selection(), ["Normal"]);
            const widths = segments().map(segment => segment.width);
            compare(widths[0], widths[1]);
            compare(widths[1], widths[2]);
        }

        function test_pressPicks() {
            mouseClick(segments()[2]);
            compare(picked.count, 1);
            compare(root.value, "large");
            compare(selection(), ["Grande"]);
        }

        function test_unknownValueSelectsNothing() {
            root.value = "enorme";
            compare(selection(), []);
            mouseClick(segments()[0]);
            compare(selection(), ["Compacto"]);
        }

        function test_arrowsMoveTheChoiceAndStopAtTheEnds() {
            segments()[1].forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Right);
            compare(root.value, "large");
            verify(segments()[2].activeFocus);
            keyClick(Qt.Key_Right);
            compare(root.value, "large");
            keyClick(Qt.Key_Left);
            keyClick(Qt.Key_Left);
            compare(root.value, "compact");
            verify(segments()[0].activeFocus);
            keyClick(Qt.Key_Left);
            compare(root.value, "compact");
            compare(picked.count, 3);
        }

        function test_arrowsPickWhenNothingIsSelected() {
            root.value = "enorme";
            segments()[0].forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Right);
            compare(root.value, "compact");
        }

        function test_isOneTabStop() {
            const stops = segments().filter(segment => segment.focusPolicy & Qt.TabFocus);
            compare(stops.map(segment => segment.text), ["Normal"]);
            root.value = "enorme";
            compare(segments().filter(segment => segment.focusPolicy & Qt.TabFocus).length, 1);
        }
    }
}
