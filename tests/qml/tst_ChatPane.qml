pragma ComponentBehavior: Bound

import QtQuick
import QtTest
import Aulora
import Aulora.Render
import Aulora.Test
import Aulora.Theme
import Aulora.Ui

Item {
    id: root

    width: 1400
    height: 1000

    Component {
        id: programComponent

        SampleProgram {}
    }

    Component {
        id: columnComponent

        DetailColumn {
            authorLine: "EQUIPO DE PRUEBA"
            pendingPreview: ""
        }
    }

    SamplePictures {
        id: pictures
    }

    ViewTestCase {
        name: "ChatPane"

        readonly property string longText: "La insuficiencia cardíaca es un síndrome clínico.\n".repeat(60)
        /// The column's sizes in the smallest window, the usual one and a large one.
        readonly property var sizes: [
            { tag: "940 by 700", width: 700, height: 700 },
            { tag: "1120 by 820", width: 880, height: 820 },
            { tag: "1600 by 1000", width: 1360, height: 1000 }
        ]

        property SampleProgram program: null
        property var contentView: null
        property DetailColumn column: null
        property ChatPane pane: null

        function init() {
            program = createTemporaryObject(programComponent, root);
            contentView = program.contentView;
            show(makeColumn(sizes[1], program));
        }

        // The column goes before the state that it shows.
        function cleanup() {
            column.destroy();
            column = null;
            pane = null;
            wait(0);
            Theme.appearanceRawValue = "light";
        }

        function makeColumn(size, program) {
            const made = columnComponent.createObject(root, {
                width: size.width,
                height: size.height,
                contentView: program.contentView
            });
            verify(made !== null);
            return made;
        }

        function show(newColumn) {
            column = newColumn;
            pane = child(column, "chatPane");
            waitForRendering(pane);
        }

        function bubbles() {
            return items(pane.contentItem, item => item.nearViewport !== undefined && item.messageText !== undefined);
        }

        function thinkingRows() {
            return items(pane.contentItem, item => item.text === "Preparando respuesta…").map(text => text.parent.parent.parent);
        }

        function marker() {
            return child(pane.contentItem, "bottom");
        }

        function home() {
            return items(pane.contentItem, item => item.promptChosen !== undefined && item.visible);
        }

        function isAtBottom() {
            const end = rectangle(marker(), pane);
            return Math.abs(end.y + end.height - pane.height) <= 1;
        }

        function place(item) {
            return rectangle(item, pane.contentItem);
        }

        function conversation(row) {
            return contentView.conversations.data(contentView.conversations.index(row, 0), Qt.UserRole);
        }

        function bottomOf(item) {
            return place(item).y + item.height;
        }

        /// Lets all scrolls end that are due: a change made now elsewhere leads to one that ends last.
        function waitForScrolls() {
            const other = createTemporaryObject(programComponent, root);
            const otherColumn = makeColumn(sizes[1], other);
            const otherPane = child(otherColumn, "chatPane");
            other.reply(longText);
            tryVerify(() => otherPane.contentY > 0 && otherPane.contentY === otherPane.contentHeight - 22 - otherPane.height);
            otherColumn.destroy();
            // A frame, after which the list holds no place any longer that it had before its layout.
            grabImage(pane);
            wait(0);
        }

        // Layout.

        function test_messages_data() {
            return sizes;
        }
        function test_messages(size) {
            column.width = size.width;
            column.height = size.height;
            program.ask("Uno");
            program.reply("Dos\n- tres");
            program.ask("Cuatro");
            waitForRendering(pane);
            const found = bubbles();
            compare(pane.width, size.width);
            compare(found.length, 3);
            compare(found.map(bubble => bubble.messageText), ["Uno", "Dos\n- tres", "Cuatro"]);
            compare(found.map(bubble => bubble.isUser), [true, false, true]);
            let top = 22;
            for (const bubble of found) {
                compare(place(bubble).x, 32);
                verifyClose(place(bubble).y, top, "message's y");
                compare(bubble.width, size.width - 2 * 32);
                compare(bubble.height, bubble.implicitHeight);
                top += bubble.height + 23;
            }
            verifyClose(place(marker()).y, top, "marker's y");
            compare(place(marker()).x, 32);
            compare(marker().width, size.width - 2 * 32);
            compare(marker().height, 1);
            verifyClose(pane.contentHeight, top + 1 + 22, "content's height");
            compare(pane.contentWidth, size.width);
            compare(pane.contentY, 0);
            compare(home().length, 0);
        }

        function test_home_data() {
            return sizes;
        }
        function test_home(size) {
            column.width = size.width;
            column.height = size.height;
            waitForRendering(pane);
            compare(bubbles().length, 0);
            compare(home().length, 1);
            compare(place(home()[0]).y, 22);
            compare(place(home()[0]).x, 32);
            compare(home()[0].width, size.width - 2 * 32);
            verifyClose(place(marker()).y, bottomOf(home()[0]) + 23, "marker's y");
            verifyClose(pane.contentHeight, bottomOf(marker()) + 22, "content's height");
        }

        function test_homeAndMessagesTakeTurns() {
            program.ask("Uno");
            tryVerify(() => home().length === 0);
            compare(bubbles().length, 1);
            contentView.startNewConversation();
            tryVerify(() => home().length === 1);
            compare(bubbles().length, 0);
        }

        function test_thinkingRow_data() {
            return schemes;
        }
        function test_thinkingRow(scheme) {
            contentView.textSizeRawValue = "large";
            useScheme(scheme);
            program.ask("Uno");
            program.setLoading(true);
            waitForRendering(pane);
            compare(thinkingRows().length, 1);
            const row = thinkingRows()[0];
            verify(row.parent === child(pane.contentItem, "thinking"), "the row goes by its name");
            const spinner = items(row, item => item.size !== undefined)[0];
            const name = label(row, "Aulora IA");
            const text = label(row, "Preparando respuesta…");

            compare(place(row).x, 32);
            verifyClose(place(row).y, bottomOf(bubbles()[0]) + 23, "row's y");
            verifyClose(place(marker()).y, bottomOf(row) + 23, "marker's y");
            compare(row.radius, 15);
            verifyColor(row.color, panelBackground(scheme));
            compare(row.borderWidth, 0);

            compare(Qt.size(spinner.width, spinner.height), Qt.size(16, 16));
            compare(rectangle(spinner, row).x, 13);
            verify(Math.abs(rectangle(spinner, row).y + 8 - row.height / 2) <= 0.5, "spinner is centred");
            compare(rectangle(name, row).x, 13 + 16 + 11);
            compare(rectangle(name, row).y, 10);
            compare(rectangle(text, row).x, 13 + 16 + 11);
            verifyClose(rectangle(text, row).y, 10 + name.height + 2, "second line");
            verifyClose(row.height, 10 + name.height + 2 + text.height + 10, "row's height");
            verifyClose(row.width, 13 + 16 + 11 + Math.max(name.width, text.width) + 13, "row's width");
            verifyType(name, 11, Font.DemiBold);
            verifyType(text, 10, Font.Normal);
            verifyColor(name.color, primaryAt(scheme, 1));
            verifyColor(text.color, secondary(scheme));
        }

        function test_thinkingRowBelowTheHome() {
            program.setLoading(true);
            waitForRendering(pane);
            compare(home().length, 1);
            compare(thinkingRows().length, 1);
            verifyClose(place(thinkingRows()[0]).y, bottomOf(home()[0]) + 23, "row's y");
            verifyClose(place(marker()).y, bottomOf(thinkingRows()[0]) + 23, "marker's y");
        }

        function test_whenTheThinkingRowShows_data() {
            const ask = () => program.ask("Uno");
            const reply = () => program.reply("Dos");
            const replyEmptily = () => program.reply("");
            return [
                { tag: "no message", messages: [], loading: true, shows: true },
                { tag: "question", messages: [ask], loading: true, shows: true },
                { tag: "reply", messages: [ask, reply], loading: true, shows: false },
                { tag: "empty reply", messages: [ask, replyEmptily], loading: true, shows: false },
                { tag: "next question", messages: [ask, reply, ask], loading: true, shows: true },
                { tag: "at rest, no message", messages: [], loading: false, shows: false },
                { tag: "at rest, question", messages: [ask], loading: false, shows: false },
                { tag: "at rest, reply", messages: [ask, reply], loading: false, shows: false },
                { tag: "at rest, empty reply", messages: [ask, replyEmptily], loading: false, shows: false }
            ];
        }
        function test_whenTheThinkingRowShows(data) {
            for (const append of data.messages)
                append();
            program.setLoading(data.loading);
            compare(pane.showsThinkingRow, data.shows);
            compare(thinkingRows().length, data.shows ? 1 : 0);
            program.setLoading(!data.loading);
            program.setLoading(data.loading);
            compare(thinkingRows().length, data.shows ? 1 : 0);
        }

        function test_replyTakesTheThinkingRowsPlace() {
            program.ask("Uno");
            program.setLoading(true);
            waitForRendering(pane);
            const before = place(thinkingRows()[0]);
            program.reply("");
            compare(thinkingRows().length, 0);
            waitForRendering(pane);
            compare(place(bubbles()[1]).y, before.y);
        }

        function test_nothingSelected() {
            program.ask("Uno");
            contentView.selectConversation("{00000000-0000-0000-0000-000000000000}");
            tryVerify(() => home().length === 1);
            compare(bubbles().length, 0);
            verify(marker().visible);
        }

        function test_scrollIndicator() {
            const bars = () => items(pane, item => item.minimumSize !== undefined && item.visible);
            program.ask("Uno");
            waitForRendering(pane);
            compare(bars().length, 0);
            program.reply(longText);
            tryVerify(() => bars().length === 1);
            const bar = bars()[0];
            compare(rectangle(bar, pane).x + bar.width, pane.width);
            compare(bar.height, pane.height);
            tryVerify(isAtBottom);
            verify(bar.position > 0.1, bar.position);
        }

        // What the bubbles are given.

        function test_textScale_data() {
            return [
                { tag: "compact", scale: 0.9 },
                { tag: "standard", scale: 1 },
                { tag: "large", scale: 1.15 },
                { tag: "enorme", scale: 1 },
                { tag: "", scale: 1 }
            ];
        }
        function test_textScale(data) {
            program.ask("Uno");
            program.reply("Dos");
            contentView.textSizeRawValue = data.scale === 1 ? "large" : "standard";
            contentView.textSizeRawValue = data.tag;
            compare(bubbles().map(bubble => bubble.textScale), [data.scale, data.scale]);
        }

        function test_imagePreviews() {
            program.ask("Uno", pictures.png(300, 100));
            const thumbnails = () => items(bubbles()[0], item => item.text === "Ver imagen adjunta" && item.visible);
            tryVerify(() => thumbnails().length === 1);
            contentView.showImagePreviews = false;
            compare(thumbnails().length, 0);
            contentView.showImagePreviews = true;
            tryVerify(() => thumbnails().length === 1);
        }

        function test_imageTap() {
            const bytes = pictures.png(300, 100);
            program.ask("Uno", bytes);
            let shown = null;
            const note = () => shown = Array.from(new Uint8Array(contentView.enlargedImageBytes));
            contentView.showImageViewerChanged.connect(note);
            const thumbnails = () => items(pane, item => item.text === "Ver imagen adjunta" && item.visible);
            tryVerify(() => thumbnails().length === 1);
            waitForRendering(pane);
            mouseClick(thumbnails()[0]);
            contentView.showImageViewerChanged.disconnect(note);
            compare(contentView.showImageViewer, true);
            compare(shown, Array.from(new Uint8Array(bytes)), "the image is there before the viewer");
        }

        // Scrolling to the bottom.

        function test_followsANewMessage() {
            program.ask("Uno");
            program.reply(longText);
            compare(pane.contentY, 0, "not at once");
            tryVerify(isAtBottom);
            const before = pane.contentY;
            program.ask(longText);
            compare(pane.contentY, before, "not at once");
            tryVerify(() => pane.contentY > before && isAtBottom());
        }

        function test_followsAGrowingReply() {
            program.ask(longText);
            program.reply("");
            tryVerify(isAtBottom);
            const height = pane.contentHeight;
            for (let i = 0; i < 30; ++i)
                program.appendText("Otra línea.\n");
            tryVerify(() => pane.contentHeight > height + 300 && isAtBottom());
        }

        function test_followsLoading_data() {
            return [{ tag: "rise", loading: true }, { tag: "fall", loading: false }];
        }
        function test_followsLoading(data) {
            program.setLoading(!data.loading);
            program.reply(longText);
            waitForScrolls();
            verify(isAtBottom());
            pane.contentY = 0;
            program.setLoading(data.loading);
            compare(pane.contentY, 0, "not at once");
            tryVerify(isAtBottom);
        }

        function test_followsASwitchOfConversation() {
            program.ask("Uno");
            program.reply(longText);
            tryVerify(isAtBottom);
            contentView.startNewConversation();
            program.ask("Otra");
            tryCompare(pane, "contentY", 0);
            contentView.selectConversation(conversation(1));
            tryVerify(() => bubbles().length === 2);
            tryVerify(() => pane.contentY > 0 && isAtBottom());
        }

        // Staying where it is read.

        function test_staysAtItsEnd_data() {
            return [
                { tag: "composer grows", change: () => contentView.messageText = "1\n2\n3\n4" },
                { tag: "image is attached", change: () => program.takeImage(pictures.png(40, 30), "a.png") },
                { tag: "window grows lower", change: () => column.height = 620 },
                { tag: "window grows higher", change: () => column.height = 1000 },
                { tag: "window grows narrower", change: () => column.width = 500 },
                { tag: "window grows wider", width: 500, change: () => column.width = 880 },
                { tag: "larger text", change: () => contentView.textSizeRawValue = "large" },
                { tag: "smaller text", change: () => contentView.textSizeRawValue = "compact" }
            ];
        }
        function test_staysAtItsEnd(data) {
            column.width = data.width ?? column.width;
            program.ask("Uno");
            program.reply(longText + "La insuficiencia cardíaca es un síndrome clínico. ".repeat(60));
            program.ask("Dos");
            waitForScrolls();
            verify(isAtBottom());
            const before = [pane.height, pane.contentHeight];
            data.change();
            waitForRendering(pane);
            tryVerify(() => pane.height !== before[0] || pane.contentHeight !== before[1]);
            tryVerify(() => isAtBottom());
        }

        function test_staysAtItsEndAndComesBack() {
            program.ask("Uno");
            program.reply(longText);
            waitForScrolls();
            contentView.messageText = "1\n2\n3\n4";
            waitForRendering(pane);
            contentView.messageText = "";
            waitForRendering(pane);
            verify(isAtBottom());
        }

        function test_shortListStaysAtItsEnd() {
            program.ask("Uno");
            program.reply("Dos\n".repeat(8));
            waitForScrolls();
            compare(pane.contentY, 0);
            column.height = 51 + 60 + 34 + 200;
            waitForRendering(pane);
            verify(pane.contentHeight > pane.height);
            verify(isAtBottom());
        }

        function test_homeStaysAtItsBeginning() {
            column.height = 1000;
            waitForRendering(pane);
            verify(pane.contentHeight <= pane.height);
            column.height = 700;
            waitForRendering(pane);
            verify(pane.contentHeight > pane.height);
            compare(pane.contentY, 0);
        }

        function test_growingComposerLeavesTheTopWhereItIs() {
            program.ask("Uno");
            program.reply(longText);
            waitForScrolls();
            pane.contentY = 300;
            waitForRendering(pane);
            contentView.messageText = "1\n2\n3\n4";
            waitForRendering(pane);
            compare(pane.contentY, 300);
        }

        // What is said to those who listen.

        function announced() {
            const announcement = items(column, item => item.say !== undefined)[0];
            // What is said together is told apart once the event loop comes round.
            wait(0);
            const sentence = announcement.visible ? announcement.Accessible.name : "";
            announcement.visible = false;
            return sentence;
        }

        function test_announcesStartAndEndOfAReply() {
            compare(announced(), "");
            program.ask("Uno");
            program.setLoading(true);
            compare(announced(), "");
            program.reply("");
            compare(announced(), "Aulora IA está respondiendo");
            program.appendText("Una línea.\n");
            program.appendText("Otra línea.\n");
            compare(announced(), "");
            program.setLoading(false);
            compare(announced(), "Respuesta terminada");
        }

        function test_announcesWhyThereIsNoReply() {
            program.ask("Uno");
            program.setLoading(true);
            program.failWith("No pude completar la respuesta.");
            compare(announced(), "No pude completar la respuesta.");
            compare(announced(), "", "it is said alone");
        }

        function test_announcesNothingForLookingElsewhere() {
            program.ask("Uno");
            program.reply("Dos");
            contentView.startNewConversation();
            program.ask("Tres");
            program.setLoading(true);
            contentView.selectConversation(conversation(1));
            compare(announced(), "", "an older reply is not the one awaited");
            contentView.selectConversation(conversation(0));
            program.reply("");
            compare(announced(), "Aulora IA está respondiendo");
            contentView.startNewConversation();
            contentView.selectConversation(conversation(1));
            compare(announced(), "", "it starts only once");
            program.setLoading(false);
            compare(announced(), "Respuesta terminada");
        }

        // The keyboard.

        function test_keysScroll() {
            program.ask("Uno");
            program.reply(longText);
            waitForScrolls();
            const part = child(pane, "visiblePart");
            part.forceActiveFocus(Qt.TabFocusReason);
            const end = pane.contentHeight - pane.height;
            keyClick(Qt.Key_Home);
            compare(pane.contentY, 0);
            keyClick(Qt.Key_Down);
            verify(pane.contentY > 20 && pane.contentY < 120, pane.contentY);
            keyClick(Qt.Key_Up);
            compare(pane.contentY, 0);
            keyClick(Qt.Key_PageDown);
            verify(pane.contentY > pane.height / 2 && pane.contentY < pane.height, pane.contentY);
            keyClick(Qt.Key_PageUp);
            compare(pane.contentY, 0);
            keyClick(Qt.Key_End);
            compare(pane.contentY, end);
            keyClick(Qt.Key_Down);
            compare(pane.contentY, end);
        }

        function test_keysScrollFromWithinAMessage() {
            program.ask("Uno");
            program.reply(longText);
            waitForScrolls();
            mouseClick(pane, 100, pane.height / 2);
            keyClick(Qt.Key_Home);
            compare(pane.contentY, 0);
            keyClick(Qt.Key_Down);
            verify(pane.contentY > 0);
        }

        function test_tabReachesTheListAndShowsIt() {
            program.ask("Uno");
            program.reply(longText);
            waitForScrolls();
            const part = child(pane, "visiblePart");
            const ring = () => items(pane, item => item.borderWidth > 2 && item.visible).filter(item => item.parent.control === part);
            compare(ring().length, 0);
            const edit = child(column, "edit");
            edit.forceActiveFocus();
            keyClick(Qt.Key_Tab, Qt.ShiftModifier);
            tryVerify(() => !edit.activeFocus);
            for (let i = 0; i < 10 && !part.activeFocus; ++i)
                keyClick(Qt.Key_Tab, Qt.ShiftModifier);
            verify(part.activeFocus);
            compare(part.Accessible.name, "Conversación");
            compare(ring().length, 1);
            const place = rectangle(ring()[0], pane);
            verify(place.x >= 0 && place.y >= 0 && place.x + place.width <= pane.width && place.y + place.height <= pane.height);
            keyClick(Qt.Key_Home);
            compare(rectangle(ring()[0], pane), place, "stays while the list scrolls");
            edit.forceActiveFocus();
            mouseClick(pane, 5, 5);
            verify(part.activeFocus);
            compare(ring().length, 0);
        }

        function test_listThatFitsIsNoStop() {
            program.ask("Uno");
            waitForRendering(pane);
            verify(!(child(pane, "visiblePart").focusPolicy & Qt.TabFocus));
        }

        function test_pressBesideAMessageDropsTheSelection() {
            program.ask("Uno");
            program.reply("Hola");
            waitForRendering(pane);
            const reply = items(bubbles()[1], item => item.dotColor !== undefined)[0];
            mouseDoubleClickSequence(reply, 10, 10);
            compare(reply.selectedText, "Hola");
            mouseClick(pane, 5, pane.height - 5);
            compare(reply.selectedText, "");
        }

        function test_doesNotScrollWhenFirstShown() {
            program.ask("Uno");
            program.reply(longText);
            column.destroy();
            show(makeColumn(sizes[1], program));
            verify(pane.contentHeight > pane.height);
            waitForScrolls();
            compare(pane.contentY, 0);
        }
    }
}
