pragma ComponentBehavior: Bound

import QtQuick
import QtTest
import Aulora.Test
import Aulora.Theme
import Aulora.Ui

Item {
    id: root

    width: 800
    height: 820

    Component {
        id: component

        Sidebar {
            width: 240
            height: 820
            conversations: SampleConversations {}
            onConversationChosen: id => chosenId = id

            property var chosenId
        }
    }

    SignalSpy {
        id: spy
    }

    ViewTestCase {
        name: "Sidebar"

        property SampleConversations conversations: null

        function make(count) {
            const sidebar = createTemporaryObject(component, root);
            conversations = sidebar.conversations;
            for (let i = count; i > 0; --i)
                conversations.add("Conversación " + i, i);
            if (count > 0)
                conversations.selectRow(0);
            waitForRendering(sidebar);
            return sidebar;
        }

        function watch(sidebar, signalName) {
            spy.clear();
            spy.target = sidebar;
            spy.signalName = signalName;
        }

        function rows(sidebar) {
            return items(child(sidebar, "list").contentItem, item => item.messageCount !== undefined)
                .sort((a, b) => a.y - b.y);
        }

        function cleanup() {
            Theme.appearanceRawValue = "light";
        }

        function test_header_data() {
            return schemes;
        }
        function test_header(scheme) {
            useScheme(scheme);
            const sidebar = make(1);
            const header = child(sidebar, "header");
            const logo = rectangle(child(header, "logo"), sidebar);
            const caption = label(header, "INTELIGENCIA MÉDICA EDUCATIVA");
            const captionPlace = rectangle(caption, sidebar);

            verifyColor(sidebar.color, panelBackground(scheme));
            compare(logo.y, 18);
            verify(logo.width <= 175 && logo.height <= 48.01);
            verify(Math.abs(logo.width - 175) < 0.01 || Math.abs(logo.height - 48) < 0.01);
            verify(logo.x >= 14);
            verify(Math.abs(logo.x + logo.width / 2 - 120) <= 0.5);
            verifyClose(captionPlace.y, logo.y + logo.height + 8, "caption's top");
            verify(Math.abs(captionPlace.x + captionPlace.width / 2 - 120) <= 0.5);
            verifyType(caption, 8, Font.Medium, 0.8);
            verifyColor(caption.color, secondary(scheme));
            verifyClose(header.height, captionPlace.y + captionPlace.height + 17, "header's height");
        }

        function test_captionFitsTheNarrowestSidebar() {
            const sidebar = make(1);
            sidebar.width = 215;
            const caption = label(sidebar, "INTELIGENCIA MÉDICA EDUCATIVA");
            verify(caption.width <= 215 - 2 * 14, caption.width);
        }

        function test_newConversation_data() {
            return schemes;
        }
        function test_newConversation(scheme) {
            useScheme(scheme);
            const sidebar = make(1);
            const header = child(sidebar, "header");
            const button = child(sidebar, "newConversation");
            const icon = symbol(button, "square.and.pencil");
            const text = label(button, "Nueva conversación");

            verifyClose(rectangle(button, sidebar).y, header.height, "button's top");
            compare(rectangle(button, sidebar).x, 14);
            compare(button.width, 240 - 2 * 14);
            compare(button.height, 42);
            compare(button.background.radius, 11);
            verifyColor(button.background.color, accentAt(0.09));
            compare(rectangle(child(button, "iconFrame"), button).x, 13);
            compare(child(button, "iconFrame").width, 20);
            compare(rectangle(text, button).x, 13 + 20 + 10);
            verifySymbol(icon, 13, Font.Medium);
            verifyColor(icon.color, primaryAt(scheme, 1));
            verifyType(text, 13, Font.Medium);
            verifyColor(text.color, primaryAt(scheme, 1));
            compare(accessibleName(button), "Nueva conversación");
            compare(text.truncated, false);

            const historyHeader = rectangle(child(sidebar, "historyHeader"), sidebar);
            verifyClose(historyHeader.y, header.height + 42 + 16 + 1, "history header's top");
        }

        function test_historyHeader_data() {
            return schemes;
        }
        function test_historyHeader(scheme) {
            useScheme(scheme);
            const sidebar = make(3);
            const header = child(sidebar, "historyHeader");
            const title = label(header, "HISTORIAL");
            const capsule = child(header, "countCapsule");
            const count = child(header, "count");
            const clear = child(header, "clear");
            const trash = symbol(clear, "trash");

            compare(header.height, 15 + 25 + 7);
            compare(rectangle(title, header).x, 16);
            verifyType(title, 10, Font.DemiBold, 0.7);
            verifyColor(title.color, secondary(scheme));

            compare(count.text, "3");
            verifyType(count, 9, Font.Medium);
            verifyColor(count.color, secondary(scheme));
            verifyColor(capsule.color, primaryAt(scheme, 0.05));
            verifyClose(capsule.height, count.implicitHeight + 2 * 3, "capsule's height");
            verify(capsule.width >= count.implicitWidth + 2 * 7);
            compare(capsule.radius, capsule.height / 2);

            compare(clear.width, 25);
            compare(clear.height, 25);
            compare(rectangle(clear, header).x + 25, 240 - 11);
            compare(rectangle(clear, header).y, 15);
            verifySymbol(trash, 10.5, Font.Medium);
            verifyColor(trash.color, secondary(scheme));
            const trashPlace = rectangle(trash, clear);
            verify(Math.abs(trashPlace.x + trashPlace.width / 2 - 25 / 2) <= 0.5, "trash is centred across");
            verify(Math.abs(trashPlace.y + trashPlace.height / 2 - 25 / 2) <= 0.5, "trash is centred down");
            compare(accessibleName(clear), "Borrar historial");
        }

        function test_dividers_data() {
            return [{ tag: "narrowest", width: 215 }, { tag: "ideal", width: 240 }, { tag: "widest", width: 285 }];
        }
        function test_dividers(data) {
            const sidebar = make(1);
            sidebar.width = data.width;
            const history = rectangle(child(sidebar, "historyDivider"), sidebar);
            const foot = rectangle(child(sidebar, "footDivider"), sidebar);
            for (const divider of [history, foot]) {
                compare(divider.x, 14);
                compare(divider.width, data.width - 2 * 14);
                compare(divider.height, 1);
            }
            verifyClose(history.y + 1, rectangle(child(sidebar, "historyHeader"), sidebar).y, "upper divider's place");
            compare(foot.y, 820 - 34 - 52 - 1);
        }

        function test_tooltip() {
            const clear = child(make(1), "clear");
            const tooltip = child(clear, "tooltip");
            verifyTooltip(tooltip, clear, "Borrar historial", root);
        }

        function test_countFollowsTheList() {
            const sidebar = make(1);
            const count = child(sidebar, "count");
            compare(count.text, "1");
            conversations.add("Otra", 0);
            compare(count.text, "2");
        }

        function test_list() {
            const sidebar = make(4);
            const list = child(sidebar, "list");
            const found = rows(sidebar);
            const historyHeader = rectangle(child(sidebar, "historyHeader"), sidebar);
            compare(found.length, 4);
            found.forEach((row, index) => {
                compare(row.title, "Conversación " + (index + 1));
                compare(row.messageCount, index + 1);
                compare(row.selected, index === 0);
                const place = rectangle(row, sidebar);
                compare(place.x, 8);
                compare(place.width, 240 - 2 * 8);
                compare(place.y, historyHeader.y + historyHeader.height + index * (43 + 4));
                verifyColor(row.background.color,
                            index === 0 ? primaryAt(schemes[0], 0.055) : Qt.rgba(0, 0, 0, 0));
            });
            compare(list.bottomMargin, 12);
        }

        function test_listIsLazy() {
            const sidebar = make(500);
            verify(rows(sidebar).length < 60, rows(sidebar).length);
            compare(child(sidebar, "count").text, "500");
        }

        function test_rowFollowsItsConversation() {
            const sidebar = make(2);
            label(sidebar, "1 mensajes");
            conversations.addMessage(1);
            label(sidebar, "3 mensajes");
            conversations.rename(1, "Otro título");
            label(sidebar, "Otro título");
            conversations.selectRow(1);
            compare(rows(sidebar).map(row => row.selected), [false, true]);
        }

        function test_newConversationComesFirst() {
            const sidebar = make(2);
            conversations.add("Nueva conversación", 0);
            conversations.selectRow(0);
            tryVerify(() => rows(sidebar).length === 3);
            const first = rows(sidebar)[0];
            compare(first.title, "Nueva conversación");
            compare(first.selected, true);
            label(first, "0 mensajes");
        }

        function test_choosing() {
            const sidebar = make(3);
            watch(sidebar, "conversationChosen");
            mouseClick(rows(sidebar)[2]);
            compare(spy.count, 1);
            compare(sidebar.chosenId, conversations.idOfRow(2));
            mouseClick(rows(sidebar)[0]);
            compare(spy.count, 2, "also the selected one");
            compare(sidebar.chosenId, conversations.idOfRow(0));
        }

        function test_choosingByKeys() {
            const sidebar = make(3);
            watch(sidebar, "conversationChosen");
            tryCompare(child(sidebar, "list"), "currentIndex", 0);
            rows(sidebar)[0].forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Down);
            keyClick(Qt.Key_Down);
            compare(rows(sidebar)[2].activeFocus, true);
            keyClick(Qt.Key_Return);
            compare(sidebar.chosenId, conversations.idOfRow(2));
            keyClick(Qt.Key_Up);
            keyClick(Qt.Key_Space);
            compare(sidebar.chosenId, conversations.idOfRow(1));
        }

        function test_tabOrder() {
            const sidebar = make(3);
            const order = [child(sidebar, "newConversation"), child(sidebar, "clear"),
                           rows(sidebar)[0], child(sidebar, "settings")];
            tryCompare(child(sidebar, "list"), "currentIndex", 0);
            order[0].forceActiveFocus(Qt.TabFocusReason);
            for (const next of order.slice(1)) {
                keyClick(Qt.Key_Tab);
                verify(next.activeFocus, next + " but " + next.Window.activeFocusItem);
            }
        }

        function test_actions_data() {
            return [
                { tag: "newConversation", signal: "newConversationRequested" },
                { tag: "clear", signal: "clearHistoryRequested" },
                { tag: "settings", signal: "settingsRequested" }
            ];
        }
        function test_actions(data) {
            const sidebar = make(1);
            watch(sidebar, data.signal);
            const button = child(sidebar, data.tag);
            mouseClick(button);
            compare(spy.count, 1);
            button.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Space);
            compare(spy.count, 2);
        }

        function test_foot_data() {
            return schemes;
        }
        function test_foot(scheme) {
            useScheme(scheme);
            const sidebar = make(1);
            const strip = child(sidebar, "footerStrip");
            const line = child(strip, "topLine");
            const settings = child(sidebar, "settings");
            const icon = symbol(settings, "gearshape");
            const text = label(settings, "Configuración");

            compare(rectangle(strip, sidebar), Qt.rect(0, 820 - 34, 240, 34));
            verifyColor(strip.color, accentDeep());
            compare(rectangle(line, strip), Qt.rect(0, 0, 240, 1));
            verifyColor(line.color, accentAt(0.95));

            compare(rectangle(settings, sidebar), Qt.rect(0, 820 - 34 - 52, 240, 52));
            compare(rectangle(child(settings, "iconFrame"), settings).x, 14);
            compare(child(settings, "iconFrame").width, 20);
            compare(rectangle(text, settings).x, 14 + 20 + 10);
            verifySymbol(icon, 12, Font.Medium);
            verifyColor(icon.color, secondary(scheme));
            verifyType(text, 12.5, Font.Normal);
            verifyColor(text.color, secondary(scheme));
            compare(accessibleName(settings), "Configuración");

            const list = rectangle(child(sidebar, "list"), sidebar);
            compare(list.y + list.height, 820 - 34 - 52 - 1);
        }
    }
}
