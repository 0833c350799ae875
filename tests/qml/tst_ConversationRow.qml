pragma ComponentBehavior: Bound

import QtQuick
import QtTest
import Aulora.Theme
import Aulora.Ui

Item {
    id: root

    width: 800
    height: 700

    Component {
        id: rowComponent

        ConversationRow {
            readonly property bool isUnderThePointer: pointer.hovered

            width: 224

            Item {
                anchors.fill: parent

                HoverHandler {
                    id: pointer
                }
            }
        }
    }

    Component {
        id: fadeComponent

        // Fades as what does follow the pointer fades.
        Rectangle {
            visible: false
            color: "black"

            Behavior on color {
                HoverAnimation {}
            }
        }
    }

    SignalSpy {
        id: clicked

        signalName: "clicked"
    }

    ViewTestCase {
        name: "ConversationRow"

        function make(title, count, selected) {
            const row = createTemporaryObject(rowComponent, root,
                                              { title: title, messageCount: count, selected: selected });
            clicked.target = row;
            clicked.clear();
            return row;
        }

        function cleanup() {
            Theme.appearanceRawValue = "light";
        }

        function test_look_data() {
            const rows = [];
            for (const scheme of schemes) {
                for (const selected of [false, true])
                    rows.push(Object.assign({}, scheme, { tag: scheme.tag + (selected ? ", selected" : ""), scheme: scheme, selected: selected }));
            }
            return rows;
        }
        function test_look(data) {
            useScheme(data.scheme);
            const row = make("Histología", 3, data.selected);
            const tile = child(row, "tile");
            const icon = symbol(tile, "bubble.left");
            const title = label(row, "Histología");
            const count = label(row, "3 mensajes");

            compare(row.height, 43);
            compare(row.background.radius, 9);
            compare(row.background.width, 224);
            compare(row.background.height, 43);
            verifyColor(row.background.color,
                        data.selected ? primaryAt(data.scheme, 0.055) : Qt.rgba(0, 0, 0, 0));
            compare(rectangle(tile, row), Qt.rect(8, 8, 27, 27));
            verifyColor(tile.color, data.selected ? accentAt(0.09) : Qt.rgba(0, 0, 0, 0));
            compare(icon.size, 11);
            verifyColor(icon.color, data.selected ? accentAt(1) : secondary(data.scheme));

            verifyType(title, 12.5, data.selected ? Font.Medium : Font.Normal);
            verifyColor(title.color, primaryAt(data.scheme, 1));
            verifyType(count, 9, Font.Normal);
            verifyColor(count.color, secondary(data.scheme));
            compare(rectangle(title, row).x, 8 + 27 + 10);
            verifyClose(rectangle(count, row).y, rectangle(title, row).y + title.height + 2, "count's top");
            verifyClose(rectangle(title, row).x + title.width, 224 - 8, "title's end");

            compare(accessibleName(row), "Histología");
            compare(row.Accessible.description, "3 mensajes");
            compare(row.highlighted, data.selected);
        }

        function test_countIsAlwaysPlural_data() {
            return [{ tag: "0 mensajes", count: 0 }, { tag: "1 mensajes", count: 1 }, { tag: "1234 mensajes", count: 1234 }];
        }
        function test_countIsAlwaysPlural(data) {
            label(make("Una", data.count, false), data.tag);
        }

        function test_titleIsVerbatim_data() {
            return [{ tag: "<b>negrita</b> &amp; **dos**" }, { tag: "<img src='http://127.0.0.1:1/x.png'>" }, { tag: "" }];
        }
        function test_titleIsVerbatim(data) {
            const title = child(make(data.tag, 0, false), "title");
            compare(title.text, data.tag);
            compare(title.textFormat, Text.PlainText);
        }

        function test_longTitleWraps() {
            const row = make("Quiero estudiar Medicina Interna y …", 2, false);
            const title = child(row, "title");
            verify(title.lineCount > 1);
            compare(title.truncated, false);
            verify(title.contentWidth <= title.width);
        }

        function test_height_data() {
            return [
                { tag: "one line", title: "Una", lines: 1 },
                { tag: "two lines", title: "Una\notra", lines: 2 },
                { tag: "three lines", title: "Una\notra\ny otra", lines: 3 }
            ];
        }
        function test_height(data) {
            const row = make(data.title, 2, false);
            const title = child(row, "title");
            const count = label(row, "2 mensajes");
            waitForRendering(row);

            compare(title.lineCount, data.lines);
            compare(row.height, Math.max(43, row.contentItem.implicitHeight + 2 * 6));
            verifyClose(row.contentItem.implicitHeight, Math.max(27, title.height + 2 + count.height),
                        "content's height");
            compare(title.truncated, false);
            const above = rectangle(title, row).y;
            const below = row.height - rectangle(count, row).y - count.height;
            verify(above >= 5 && (above <= 6.5 || data.lines === 1), "air above: " + above);
            verify(below >= 5 && (below <= 6.5 || data.lines === 1), "air below: " + below);
        }

        function test_hugeTitle_data() {
            return [
                { tag: "without a blank", title: "x".repeat(100000) },
                { tag: "of words", title: "palabra ".repeat(12500) },
                { tag: "of lines", title: "a\n".repeat(50000) },
                { tag: "of marks", title: "e" + "\u0301".repeat(99999) }
            ];
        }
        function test_hugeTitle(data) {
            const row = make(data.title, 2, true);
            // What is not laid out costs nothing.
            const laidOut = items(row, item => item.text !== undefined && item !== row).map(item => item.text.length);
            verify(laidOut.length >= 2);
            verify(laidOut.every(length => length <= row.longestShownTitle + 1), laidOut);
            verify(row.height < 200, row.height);
            compare(accessibleName(row), data.title);
        }

        function test_pointerOverItChangesNothing_data() {
            return [{ tag: "at rest", selected: false }, { tag: "selected", selected: true }];
        }
        function test_pointerOverItChangesNothing(data) {
            mouseMove(root, root.width - 1, root.height - 1);
            const row = make("Una", 1, data.selected);
            const look = () => [row].concat(items(row, () => true))
                .map(item => [item.color, item.opacity, item.visible, item.scale].join(" ")).join("\n");
            const before = look();

            mouseMove(row, row.width / 2, row.height / 2);
            tryCompare(row, "isUnderThePointer", true);
            compare(look(), before);
            // Nor has anything changed slowly.
            const fade = createTemporaryObject(fadeComponent, root);
            fade.color = "white";
            tryVerify(() => Qt.colorEqual(fade.color, "white"));
            compare(look(), before);
            mouseMove(root, root.width - 1, root.height - 1);
            tryCompare(row, "isUnderThePointer", false);
        }

        function test_hasNoContextMenu() {
            const row = make("Una", 1, false);
            waitForRendering(row);
            const shown = () => items(row.Window.contentItem, item => item.visible).length;
            const before = shown();

            mousePress(row, row.width / 2, row.height / 2, Qt.RightButton);
            compare(row.down, false);
            mouseRelease(row, row.width / 2, row.height / 2, Qt.RightButton);
            wait(0);
            compare(clicked.count, 0);
            compare(row.activeFocus, false);
            compare(shown(), before);
        }

        function test_press() {
            const row = make("Una", 0, true);
            mouseClick(row);
            compare(clicked.count, 1);
            row.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Return);
            keyClick(Qt.Key_Space);
            compare(clicked.count, 3);
        }
    }
}
