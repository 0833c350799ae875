pragma ComponentBehavior: Bound

import QtQuick
import QtTest
import Aulora
import Aulora.Test
import Aulora.Theme

Item {
    id: root

    width: 10
    height: 10

    Component {
        id: programComponent

        SampleProgram {}
    }

    Component {
        id: windowComponent

        MainWindow {
            authorLine: "EQUIPO DE PRUEBA"
            credentialsLine: "UNA COSA · 2026"
        }
    }

    ViewTestCase {
        name: "MainWindow"

        property SampleProgram program: null
        property var contentView: null
        property MainWindow window: null
        property Item content: null

        function init() {
            program = createTemporaryObject(programComponent, root);
            contentView = program.contentView;
            window = windowComponent.createObject(null, {
                contentView: program.contentView,
                sendFlow: program.sendFlow,
                imageIntake: program.imageIntake
            });
            content = window.contentItem;
            window.requestActivate();
            tryCompare(window, "active", true);
        }

        // The window goes before the state that it shows.
        function cleanup() {
            window.destroy();
            window = null;
            content = null;
            wait(0);
            Theme.appearanceRawValue = "light";
        }

        function part(name) {
            return child(content, name);
        }

        /// The presented sheet or alert with `title`; null when there is none.
        function presented(title) {
            return items(content, item => item.text === title && item.lineCount !== undefined)[0] ?? null;
        }

        function button(text) {
            const found = items(content, item => item.text === text && item.clicked !== undefined);
            verify(found.length > 0, text);
            return found[found.length - 1];
        }

        function test_sizes() {
            compare(window.width, 1120);
            compare(window.height, 820);
            compare(window.minimumWidth, 940);
            compare(window.minimumHeight, 700);
            verify(window.maximumWidth > 10000);
            compare(window.title, "Aulora IA");
        }

        function test_columns_data() {
            return [
                { tag: "smallest", width: 940, height: 700 },
                { tag: "ideal", width: 1120, height: 820 },
                { tag: "large", width: 1600, height: 1000 }
            ];
        }
        function test_columns(size) {
            window.width = size.width;
            window.height = size.height;
            tryCompare(content, "width", size.width);
            tryCompare(content, "height", size.height);

            compare(rectangle(part("sidebar"), content), Qt.rect(0, 0, 240, size.height));
            compare(rectangle(part("detail"), content), Qt.rect(240, 0, size.width - 240, size.height));

            const detail = part("detail");
            const width = detail.width;
            const footer = rectangle(part("footer"), detail);
            const composer = rectangle(part("composer"), detail);
            const bottomDivider = rectangle(part("bottomDivider"), detail);
            const chat = rectangle(part("chatPane"), detail);
            compare(rectangle(part("topBar"), detail), Qt.rect(0, 0, width, 50));
            compare(rectangle(part("topDivider"), detail), Qt.rect(0, 50, width, 1));
            compare(chat.y, 51);
            compare(chat.width, width);
            compare(chat.y + chat.height, bottomDivider.y);
            compare(bottomDivider.width, width);
            compare(bottomDivider.height, 1);
            compare(composer.y, bottomDivider.y + 1 + 11);
            compare(composer.x, 27);
            compare(composer.width, width - 2 * 27);
            compare(footer, Qt.rect(0, size.height - 34, width, 34));
            compare(composer.y + composer.height + 10, footer.y);
            compare(rectangle(part("footerStrip"), content).y, rectangle(part("footer"), content).y);
        }

        function test_surfaces_data() {
            return schemes;
        }
        function test_surfaces(scheme) {
            contentView.appearanceRawValue = scheme.tag;
            verifyColor(part("sidebar").color, panelBackground(scheme));
            verifyColor(part("detail").color, panelBackground(scheme), "text background");
            verifyColor(part("topDivider").color, Qt.rgba(scheme.primary, scheme.primary, scheme.primary, 0.1));
            verifyColor(part("footer").color, accentDeep());
        }

        function test_homeScrollsInTheSmallestWindow() {
            window.width = 940;
            window.height = 700;
            tryCompare(content, "height", 700);
            const chat = part("chatPane");
            verify(chat.contentHeight > chat.height);
            const card = items(chat, item => item.title === "Casos Clínicos" && item.clicked !== undefined)[0];
            card.forceActiveFocus(Qt.TabFocusReason);
            tryVerify(() => {
                const place = rectangle(card, chat);
                return place.y >= 0 && place.y + place.height <= chat.height;
            });
        }

        function test_statusChip_data() {
            return schemes;
        }
        function test_statusChip(scheme) {
            contentView.appearanceRawValue = scheme.tag;
            const bar = part("topBar");
            const chip = bar.children[0];
            const dot = child(chip, "dot");
            const text = child(chip, "label");

            verifyColor(chip.color, primaryAt(scheme, 0.035));
            compare(chip.radius, chip.height / 2);
            compare(rectangle(dot, chip).x, 10);
            compare(dot.width, 7);
            compare(dot.height, 7);
            compare(dot.radius, 3.5);
            verifyClose(rectangle(text, chip).x, 10 + 7 + 7, "label's x");
            verifyClose(chip.width, 10 + 7 + 7 + text.width + 10, "chip's width");
            verifyClose(chip.height, text.height + 2 * 6, "chip's height");
            verifyClose(rectangle(chip, bar).x + chip.width, bar.width - 27, "chip's end");
            verify(Math.abs(rectangle(chip, bar).y + chip.height / 2 - 25) <= 0.5);
            verifyType(text, 10.5, Font.Medium);
            verifyColor(text.color, secondary(scheme));

            compare(text.text, "En línea");
            verifyColor(dot.color, accentAt(1));
            program.setLoading(true);
            compare(text.text, "Procesando");
            verifyColor(dot.color, Qt.color(scheme.orange));
            program.failWith("No pude completar la respuesta de Aulora IA.");
            compare(text.text, "En línea");
            verifyColor(dot.color, accentAt(1));
        }

        function test_footer() {
            const footer = part("footer");
            const line = child(footer, "topLine");
            const product = label(footer, "AULORA IA   ·   EDUCACIÓN MÉDICA   ·   2026");
            const author = label(footer, "EQUIPO DE PRUEBA");
            const white = Qt.rgba(1, 1, 1, 0.76);
            compare(rectangle(line, footer), Qt.rect(0, 0, footer.width, 1));
            verifyColor(line.color, accentAt(0.95));
            verifyType(product, 8.5, Font.Medium, 1.25);
            verifyType(author, 8.5, Font.Medium, 1.15);
            verifyColor(product.color, white);
            verifyColor(author.color, white);
            compare(rectangle(product, footer).x, 28);
            const authorPlace = rectangle(author, footer);
            compare(authorPlace.x + authorPlace.width, footer.width - 28);
            compare(author.horizontalAlignment, Text.AlignRight);
            for (const text of [product, author]) {
                const place = rectangle(text, footer);
                verify(Math.abs(place.y + place.height / 2 - (1 + 33 / 2)) <= 0.5, "centred in the rest");
            }
            compare(author.truncated, false);
        }

        function test_sidebarDrag_data() {
            return [
                { tag: "within", by: 20, width: 260 },
                { tag: "too narrow", by: -100, width: 215 },
                { tag: "too wide", by: 300, width: 285 }
            ];
        }
        function test_sidebarDrag(data) {
            const grip = part("grip");
            const middle = grip.width / 2;
            mousePress(grip, middle, 300);
            mouseMove(grip, middle + data.by / 2, 300);
            mouseMove(content, 240 + data.by, 300);
            mouseRelease(content, 240 + data.by, 300);
            verify(Math.abs(part("sidebar").width - data.width) <= 0.5, part("sidebar").width);
            compare(rectangle(part("detail"), content).x, part("sidebar").width);
            compare(part("detail").width, 1120 - part("sidebar").width);
        }

        function test_composerHasTheKeyboardAtStart() {
            verify(part("edit").activeFocus);
            keyClick("a");
            compare(contentView.messageText, "a");
        }

        function test_pressesLeaveTheKeyboardWithTheComposer() {
            mouseClick(part("newConversation"));
            verify(part("edit").activeFocus);
            const card = items(content, item => item.title === "Histología" && item.clicked !== undefined)[0];
            mouseClick(card);
            verify(part("edit").activeFocus);
            compare(contentView.messageText, "Quiero estudiar Histología. ");
            keyClick("x");
            compare(contentView.messageText, "Quiero estudiar Histología. x");
        }

        function test_promptReplacesAndSendsNothing() {
            contentView.messageText = "algo escrito";
            const controls = items(content, item => item.title !== undefined && item.clicked !== undefined && item.messageCount === undefined);
            compare(controls.length, 11);
            mouseClick(controls[1]);
            mouseClick(controls[4]);
            compare(contentView.messageText, "Quiero estudiar Anatomía. ");
            compare(contentView.currentMessages.count, 0);
            compare(contentView.isLoading, false);
            verify(controls[4].visible, "still at home");
        }

        function test_homeComesBackWithANewConversation() {
            const home = () => items(content, item => item.promptChosen !== undefined && item.visible).length > 0;
            verify(home());
            program.ask("¿Qué es la mitosis?");
            tryVerify(() => !home());
            mouseClick(part("newConversation"));
            tryVerify(home);
        }

        function test_appearanceForcesTheScheme() {
            contentView.appearanceRawValue = "dark";
            compare(Theme.dark, true);
            contentView.appearanceRawValue = "light";
            compare(Theme.dark, false);
            contentView.appearanceRawValue = "sepia";
            const unknown = Theme.dark;
            contentView.appearanceRawValue = "system";
            compare(Theme.dark, unknown);
        }

        function test_settings() {
            mouseClick(part("settings"));
            compare(contentView.showSettings, true);
            tryVerify(() => presented("Personalizá la experiencia de Aulora IA") !== null);
            const sheet = items(content, item => item.credentialsLine !== undefined)[0];
            compare(sheet.width, 560);
            tryCompare(sheet, "height", 650);
            const place = rectangle(sheet, content);
            verify(Math.abs(place.x - (1120 - 560) / 2) <= 0.5 && Math.abs(place.y - (820 - 650) / 2) <= 0.5);

            mouseClick(button("Oscuro"));
            compare(program.storedAppearance(), "dark");
            compare(Theme.dark, true);
            compare(contentView.showSettings, true);

            mouseClick(button("Cerrar configuración"));
            compare(contentView.showSettings, false);
            tryVerify(() => presented("Personalizá la experiencia de Aulora IA") === null);
            tryVerify(() => part("edit").activeFocus);
        }

        function test_settingsHoldTheKeyboard() {
            contentView.showSettings = true;
            tryVerify(() => presented("Personalizá la experiencia de Aulora IA") !== null);
            const sheet = items(content, item => item.credentialsLine !== undefined)[0];
            tryVerify(() => !part("edit").activeFocus);
            for (let i = 0; i < 25; ++i) {
                keyClick(Qt.Key_Tab);
                let inside = window.activeFocusItem;
                while (inside && inside !== sheet)
                    inside = inside.parent;
                compare(inside, sheet, "after " + (i + 1) + " tabs");
            }
            keyClick("z");
            compare(contentView.messageText, "");
            keyClick(Qt.Key_Escape);
            compare(contentView.showSettings, false);
            tryVerify(() => part("edit").activeFocus);
        }

        function test_imageAnalysisOffDropsTheImage() {
            program.takeImage("no importa", "placa.png");
            compare(contentView.hasSelectedImage, true);
            verify(part("chip").visible);
            contentView.showSettings = true;
            tryVerify(() => items(content, item => item.objectName === "imageAnalysis").length === 1);
            const toggle = items(content, item => item.objectName === "imageAnalysis")[0];
            toggle.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Space);
            compare(contentView.imageAnalysisEnabled, false);
            compare(contentView.hasSelectedImage, false);
            verify(!part("chip").visible);
        }

        function test_chip() {
            verify(!part("chip").visible);
            program.takeImage("no importa", "placa.png");
            const chip = part("chip");
            verify(chip.visible);
            label(chip, "placa.png");
            compare(part("placeholder").text, "Preguntá sobre la imagen...");
            tryVerify(() => rectangle(chip, content).y + chip.height + 8 === rectangle(part("field"), content).y);
            mouseClick(child(chip, "remove"));
            compare(contentView.hasSelectedImage, false);
            verify(!chip.visible);
        }

        function test_clearHistoryFromTheSidebar_data() {
            return [
                { tag: "confirmed", text: "Borrar historial", cleared: true },
                { tag: "cancelled", text: "Cancelar", cleared: false }
            ];
        }
        function test_clearHistoryFromTheSidebar(data) {
            program.ask("¿Qué es la mitosis?");
            mouseClick(part("newConversation"));
            compare(contentView.conversations.count, 2);
            mouseClick(part("clear"));
            compare(contentView.showClearHistoryConfirmation, true);
            tryVerify(() => presented("¿Borrar historial?") !== null);
            verify(presented("Se eliminarán todas las conversaciones guardadas en este dispositivo. La memoria de Aulora IA en el servidor no se modificará.") !== null);
            tryCompare(button("Cancelar"), "activeFocus", true);

            mouseClick(button(data.text));
            compare(contentView.conversations.count, data.cleared ? 1 : 2);
            compare(contentView.showClearHistoryConfirmation, false);
            tryVerify(() => presented("¿Borrar historial?") === null);
            compare(part("count").text, data.cleared ? "1" : "2");
            tryVerify(() => part("edit").activeFocus);
        }

        function test_escapeCancelsTheAlert() {
            program.ask("¿Qué es la mitosis?");
            contentView.requestClearHistory();
            tryVerify(() => presented("¿Borrar historial?") !== null);
            tryCompare(button("Cancelar"), "activeFocus", true);
            keyClick(Qt.Key_Escape);
            compare(contentView.showClearHistoryConfirmation, false);
            compare(contentView.currentMessages.count, 1);
            tryVerify(() => presented("¿Borrar historial?") === null);
        }

        function test_returnPressesTheSafeAnswer() {
            program.ask("¿Qué es la mitosis?");
            contentView.requestClearHistory();
            tryVerify(() => presented("¿Borrar historial?") !== null);
            tryCompare(button("Cancelar"), "activeFocus", true);
            keyClick(Qt.Key_Return);
            compare(contentView.showClearHistoryConfirmation, false);
            compare(contentView.currentMessages.count, 1);
        }

        function test_clearHistoryFromTheSettings() {
            program.ask("¿Qué es la mitosis?");
            contentView.showSettings = true;
            tryVerify(() => items(content, item => item.objectName === "clearHistory").length === 1);
            const clear = items(content, item => item.objectName === "clearHistory")[0];
            clear.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Space);
            compare(contentView.showSettings, false);
            compare(contentView.showClearHistoryConfirmation, false);
            tryCompare(contentView, "showClearHistoryConfirmation", true);
            tryVerify(() => presented("¿Borrar historial?") !== null);
            mouseClick(button("Cancelar"));
            compare(contentView.currentMessages.count, 1);
        }

        function test_clearHistoryAlertsAnswers_data() {
            return schemes;
        }
        function test_clearHistoryAlertsAnswers(scheme) {
            contentView.appearanceRawValue = scheme.tag;
            contentView.requestClearHistory();
            tryVerify(() => presented("¿Borrar historial?") !== null);
            const erase = button("Borrar historial");
            const cancel = button("Cancelar");
            compare(items(erase.parent, item => item.role !== undefined && item.clicked !== undefined).map(answer => answer.text),
                    ["Borrar historial", "Cancelar"]);
            compare(erase.role, "destructive");
            compare(erase.prominent, false);
            verifyColor(erase.contentItem.color, Qt.color(scheme.red));
            compare(cancel.prominent, true);
            tryVerify(() => {
                const first = rectangle(erase, content);
                const second = rectangle(cancel, content);
                return second.x === first.x && second.y >= first.y + first.height;
            });
            tryCompare(cancel, "activeFocus", true);
            keyClick(Qt.Key_Escape);
            tryVerify(() => presented("¿Borrar historial?") === null);
        }

        function test_everythingTakesDrops_data() {
            return [{ tag: "ideal", width: 1120, height: 820 }, { tag: "large", width: 1600, height: 1000 }];
        }
        function test_everythingTakesDrops(size) {
            window.width = size.width;
            window.height = size.height;
            tryCompare(content, "width", size.width);
            tryCompare(content, "height", size.height);
            const area = part("dropArea");
            compare(rectangle(area, content), Qt.rect(0, 0, size.width, size.height));
            verify(area.enabled && area.visible);
            verify(part("sidebar").parent === area, "the sidebar is a part of it");
            verify(part("detail").parent === area, "the detail column is a part of it");
        }

        function test_dropOverlayCoversTheDetailColumn() {
            const detail = part("detail");
            const overlay = child(detail, "dropOverlay");
            verify(!overlay.visible);
            contentView.isDropTargeted = true;
            tryCompare(overlay, "opacity", 1);
            compare(rectangle(overlay, content), rectangle(detail, content));
            for (const name of ["topBar", "chatPane", "composer", "footer"]) {
                const place = rectangle(child(detail, name), detail);
                verify(detail.childAt(place.x + place.width / 2, place.y + place.height / 2) === overlay,
                       "it lies over the " + name);
            }
            contentView.isDropTargeted = false;
            tryVerify(() => !overlay.visible);
        }

        function test_imageError() {
            program.refuseImage("La imagen supera los 12 MB.");
            tryVerify(() => presented("No pude cargar la imagen") !== null);
            verify(presented("La imagen supera los 12 MB.") !== null);
            mouseClick(button("Aceptar"));
            compare(contentView.hasImageImportError, false);
            tryVerify(() => presented("No pude cargar la imagen") === null);

            program.refuseImage("Otra.");
            tryVerify(() => presented("Otra.") !== null);
            keyClick(Qt.Key_Escape);
            compare(contentView.hasImageImportError, false);
        }

        function test_viewer() {
            contentView.openImageViewer("no es una imagen");
            compare(contentView.showImageViewer, true);
            tryVerify(() => items(content, item => item.text === "Cerrar imagen").length === 1);
            mouseClick(button("Cerrar imagen"));
            compare(contentView.showImageViewer, false);
            tryVerify(() => items(content, item => item.text === "Cerrar imagen").length === 0);
            tryVerify(() => part("edit").activeFocus);
        }

        function test_selectingDiscardsTheDraft() {
            program.ask("¿Qué es la mitosis?");
            keyClick("a");
            const row = items(part("list").contentItem, item => item.messageCount !== undefined)[0];
            compare(row.title, "¿Qué es la mitosis?");
            mouseClick(row);
            compare(contentView.messageText, "");
            compare(part("edit").text, "");
        }

        function test_sendingWithNothingDoesNothing() {
            keyClick(" ");
            keyClick(Qt.Key_Return);
            compare(contentView.isLoading, false);
            compare(contentView.currentMessages.count, 0);
        }

        function test_sending() {
            for (const letter of "hola")
                keyClick(letter);
            keyClick(Qt.Key_Return);
            verify(contentView.currentMessages.count > 0);
            compare(contentView.messageText, "");
            compare(part("edit").text, "");
            verify(part("edit").activeFocus);
            // Nobody answers, which ends in a notice.
            tryCompare(contentView.currentMessages, "count", 2, 10000);
            compare(contentView.isLoading, false);
        }
    }
}
