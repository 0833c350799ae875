pragma ComponentBehavior: Bound

import QtQuick
import QtTest
import Aulora.Theme
import Aulora.Ui

Item {
    id: root

    width: 1400
    height: 900

    Component {
        id: component

        StudyHome {}
    }

    Component {
        id: animationComponent

        HoverAnimation {}
    }

    SignalSpy {
        id: chosen

        signalName: "promptChosen"
    }

    ViewTestCase {
        name: "StudyHome"

        readonly property var controls: [
            { title: "Biología Celular", subtitle: "Célula y función", icon: "circle.hexagongrid.fill", prompt: "Quiero estudiar Biología Celular. " },
            { title: "Histología", subtitle: "Tejidos y órganos", icon: "square.grid.3x3.fill", prompt: "Quiero estudiar Histología. " },
            { title: "Embriología", subtitle: "Desarrollo humano", icon: "figure.child", prompt: "Quiero estudiar Embriología. " },
            { title: "Genética", subtitle: "Genes y herencia", icon: "point.3.connected.trianglepath.dotted", prompt: "Quiero estudiar Genética. " },
            { title: "Anatomía", subtitle: "Estructura humana", icon: "figure.arms.open", prompt: "Quiero estudiar Anatomía. " },
            { title: "Medicina Interna", subtitle: "Clínica y razonamiento", icon: "stethoscope", prompt: "Quiero estudiar Medicina Interna. " },
            { title: "Explicar", icon: "book.pages", prompt: "Explicame paso a paso: " },
            { title: "Practicar", icon: "questionmark.circle", prompt: "Creá preguntas de autoevaluación sobre: " },
            { title: "Comparar", icon: "arrow.left.arrow.right", prompt: "Compará estos conceptos: " },
            { title: "Razonar", icon: "waveform.path.ecg", prompt: "Ayudame a razonar clínicamente sobre: " },
            { title: "Casos Clínicos", icon: "waveform.path.ecg.rectangle", prompt: "Quiero trabajar con un caso clínico sobre: " }
        ]

        function make(width) {
            const home = createTemporaryObject(component, root, { width: width });
            verify(home !== null);
            chosen.target = home;
            chosen.clear();
            return home;
        }

        function controlsOf(home) {
            return items(home, item => item.title !== undefined && item.clicked !== undefined);
        }

        function cleanup() {
            mouseMove(root, root.width - 1, root.height - 1);
            Theme.appearanceRawValue = "light";
        }

        function test_texts() {
            const found = controlsOf(make(780));
            compare(found.length, 11);
            for (let i = 0; i < found.length; ++i) {
                compare(found[i].title, controls[i].title);
                label(found[i], controls[i].title);
                symbol(found[i], controls[i].icon);
                compare(accessibleName(found[i]), controls[i].title);
                if (controls[i].subtitle)
                    label(found[i], controls[i].subtitle);
            }
            label(found[10], "Integrá signos, síntomas, laboratorio y fisiopatología.");
        }

        function test_prompts_data() {
            return controls.map((control, index) => ({ tag: control.title, index: index, prompt: control.prompt }));
        }
        function test_prompts(data) {
            const control = controlsOf(make(780))[data.index];

            mouseClick(control);
            compare(chosen.count, 1);
            compare(chosen.signalArguments[0][0], data.prompt);

            control.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Space);
            compare(chosen.count, 2);
            compare(chosen.signalArguments[1][0], data.prompt);

            keyClick(Qt.Key_Return);
            compare(chosen.count, 3);
        }

        function test_clickLeavesTheFocusAlone() {
            const home = make(780);
            const control = controlsOf(home)[0];
            root.forceActiveFocus();
            mouseClick(control);
            compare(control.activeFocus, false);
        }

        function test_tabVisitsEveryControl() {
            const found = controlsOf(make(780));
            found[0].forceActiveFocus(Qt.TabFocusReason);
            for (let i = 1; i < found.length; ++i) {
                keyClick(Qt.Key_Tab);
                verify(found[i].activeFocus, found[i].title);
            }
        }

        function test_width_data() {
            return [
                { tag: "narrow", available: 500, content: 500 },
                { tag: "at the limit", available: 780, content: 780 },
                { tag: "wide", available: 1300, content: 780 }
            ];
        }
        function test_width(data) {
            const home = make(data.available);
            const grid = child(home, "subjects");
            compare(grid.width, data.content);
            compare(rectangle(grid, home).x, (data.available - data.content) / 2);

            const cards = controlsOf(home).slice(0, 6).map(card => rectangle(card, grid));
            const width = (data.content - 2 * 11) / 3;
            for (let i = 0; i < 6; ++i) {
                verifyClose(cards[i].width, width, "card width");
                verifyClose(cards[i].x, (i % 3) * (width + 11), "card x");
                compare(cards[i].y, i < 3 ? 0 : cards[0].height + 11);
                verify(cards[i].height >= 104);
            }
        }

        function test_columnsKeepTheirLeastWidth() {
            const home = make(20);
            const cards = controlsOf(home).slice(0, 3);
            for (const card of cards)
                compare(card.width, 10);
        }

        function test_container() {
            const home = make(780);
            const header = rectangle(child(home, "header"), home);
            const grid = rectangle(child(home, "subjects"), home);
            const tools = rectangle(child(home, "toolsSection"), home);
            const clinical = rectangle(controlsOf(home)[10], home);

            compare(header.y, 8);
            compare(grid.y, header.y + header.height + 24);
            compare(tools.y, grid.y + grid.height + 24);
            compare(clinical.y, tools.y + tools.height + 24);
            compare(home.implicitHeight, clinical.y + clinical.height + 20);
        }

        function test_header_data() {
            return schemes;
        }
        function test_header(scheme) {
            useScheme(scheme);
            const home = make(780);
            const header = child(home, "header");
            const logo = rectangle(child(header, "logo"), header);
            const greeting = label(header, "¿Qué querés estudiar hoy?");

            verify(logo.width <= 430 && logo.height <= 125);
            verify(logo.width === 430 || Math.abs(logo.height - 125) < 0.5);
            compare(logo.y, 8);
            verifyClose(logo.x + logo.width / 2, 390, "logo's centre");
            verifyClose(rectangle(greeting, header).y, logo.y + logo.height + 18, "greeting's top");
            verifyClose(header.height, rectangle(greeting, header).y + greeting.height + 5, "header");
            verifyType(greeting, 17, Font.Medium);
            verifyColor(greeting.color, primaryAt(scheme, 0.62));
        }

        function test_logoKeepsItsProportionsWhenNarrow() {
            const logo = child(make(200), "logo");
            verify(logo.width <= 200);
            verifyClose(logo.width / logo.height, logo.implicitWidth / logo.implicitHeight, "aspect");
        }

        function test_subjectCard_data() {
            return schemes;
        }
        function test_subjectCard(scheme) {
            useScheme(scheme);
            const card = controlsOf(make(780))[0];
            const tile = child(card, "tile");
            const arrow = symbol(card, "arrow.up.right");
            const title = label(card, "Biología Celular");
            const subtitle = label(card, "Célula y función");

            compare(card.background.width, card.width);
            compare(card.background.height, card.height);
            compare(card.background.radius, 15);
            compare(card.background.borderWidth, 1);
            verifyColor(card.background.color, panelBackground(scheme));
            verifyColor(card.background.borderColor, primaryAt(scheme, 0.07));

            const tileRectangle = rectangle(tile, card);
            compare(tileRectangle.width, 37);
            compare(tileRectangle.height, 37);
            compare(tileRectangle.x, 14);
            compare(tile.radius, 10);
            verifyColor(tile.color, primaryAt(scheme, 0.045));
            const icon = symbol(tile, "circle.hexagongrid.fill");
            verifySymbol(icon, 15, Font.Normal);
            verifyColor(icon.color, primaryAt(scheme, 0.78));

            verifySymbol(arrow, 9, Font.Medium);
            verifyColor(arrow.color, secondary(scheme));
            const arrowRectangle = rectangle(arrow, card);
            verifyClose(arrowRectangle.x + arrowRectangle.width, card.width - 14, "arrow's end");
            verify(Math.abs(arrowRectangle.y + arrowRectangle.height / 2 - tileRectangle.y - 37 / 2) <= 0.5);

            verifyType(title, 13.5, Font.DemiBold);
            verifyColor(title.color, primaryAt(scheme, 1));
            verifyType(subtitle, 10, Font.Normal);
            verifyColor(subtitle.color, secondary(scheme));
            compare(rectangle(title, card).x, 14);
            verifyClose(rectangle(title, card).y, tileRectangle.y + 37 + 13, "title's top");
            verifyClose(rectangle(subtitle, card).y, rectangle(title, card).y + title.height + 3, "subtitle's top");
            verifyClose(card.height, Math.max(104, rectangle(subtitle, card).y + subtitle.height + 14), "height");
        }

        function test_hover_data() {
            return schemes;
        }
        function test_hover(scheme) {
            useScheme(scheme);
            const home = make(780);
            const found = controlsOf(home);
            const card = found[1];
            const tile = child(card, "tile");
            const icon = symbol(tile, "square.grid.3x3.fill");
            compare(card.isHovering, false);

            mouseMove(card, card.width / 2, card.height / 2);
            tryCompare(card, "isHovering", true);
            tryVerify(() => Qt.colorEqual(tile.color, Theme.accentSoft));
            verifyColor(card.background.color, accentAt(0.035));
            verifyColor(card.background.borderColor, accentAt(0.24));
            verifyColor(tile.color, accentAt(0.09));
            verifyColor(icon.color, accentAt(1));

            for (const other of found) {
                if (other === card)
                    continue;
                verify(other.isHovering !== true, other.title);
                if (other.isHovering === false)
                    verifyColor(other.background.color, panelBackground(scheme));
            }

            mouseMove(root, root.width - 1, root.height - 1);
            tryCompare(card, "isHovering", false);
            tryVerify(() => Qt.colorEqual(icon.color, Theme.primaryAt(0.78)));
        }

        function test_hoverIsAnimated() {
            const animation = createTemporaryObject(animationComponent, root);
            compare(animation.duration, 160);
            compare(animation.easing.type, Easing.OutCubic);

            const card = controlsOf(make(780))[0];
            const tile = child(card, "tile");
            const icon = symbol(tile, "circle.hexagongrid.fill");
            // A colour read off an item goes on following it; these stay what they are now.
            const colors = () => [card.background.color, card.background.borderColor, tile.color, icon.color]
                .map(color => Qt.rgba(color.r, color.g, color.b, color.a));
            const isNear = (color, other) => ["r", "g", "b", "a"].every(channel => Math.abs(color[channel] - other[channel]) < 0.005);
            const atRest = colors();
            const hovered = [accentAt(0.035), accentAt(0.24), accentAt(0.09), accentAt(1)];
            const verifyFade = (isHovering, from, to) => {
                card.isHovering = isHovering;
                const first = colors();
                ["fill", "stroke", "tile", "icon"].forEach((name, index) => verifyColor(first[index], from[index], name + " at the first moment"));
                tryVerify(() => colors().every((color, index) => isNear(color, to[index])));
            };
            verifyFade(true, atRest, hovered);
            verifyFade(false, hovered, atRest);
        }

        function test_otherMouseButtonsPressNothing() {
            for (const control of controlsOf(make(780))) {
                mouseClick(control, control.width / 2, control.height / 2, Qt.RightButton);
                mouseClick(control, control.width / 2, control.height / 2, Qt.MiddleButton);
                compare(chosen.count, 0, control.title);
            }
        }

        function test_onlySubjectsHover() {
            const found = controlsOf(make(780));
            for (const control of found.slice(6)) {
                const before = String(control.background.color);
                mouseMove(control, control.width / 2, control.height / 2);
                wait(0);
                compare(String(control.background.color), before, control.title);
            }
        }

        function test_tools_data() {
            return schemes;
        }
        function test_tools(scheme) {
            useScheme(scheme);
            const home = make(780);
            const section = child(home, "toolsSection");
            const caption = label(section, "HERRAMIENTAS DE ESTUDIO");
            verifyType(caption, 10, Font.DemiBold, 0.8);
            verifyColor(caption.color, secondary(scheme));

            const width = (780 - 3 * 9) / 4;
            controlsOf(home).slice(6, 10).forEach((button, index) => {
                const place = rectangle(button, section);
                verifyClose(place.x, index * (width + 9), "tool x");
                verifyClose(place.y, caption.height + 10, "tool y");
                verifyClose(place.width, width, "tool width");
                compare(place.height, 36);
                compare(button.leftPadding, 11);
                compare(button.rightPadding, 11);
                compare(button.background.radius, 10);
                verifyColor(button.background.color, primaryAt(scheme, 0.03));

                const icon = symbol(button, button.icon.name);
                const title = label(button, button.title);
                verifySymbol(icon, 10.5, Font.Medium);
                verifyType(title, 10.5, Font.Medium);
                const iconPlace = rectangle(icon, button);
                const titlePlace = rectangle(title, button);
                verifyClose(titlePlace.x, iconPlace.x + iconPlace.width + 7, "gap");
                verify(Math.abs(iconPlace.x + titlePlace.x + titlePlace.width - width) <= 1.5, "centred");
            });
        }

        function test_clinicalCase_data() {
            return schemes;
        }
        function test_clinicalCase(scheme) {
            useScheme(scheme);
            const card = controlsOf(make(780))[10];
            const tile = child(card, "tile");
            const title = label(card, "Casos Clínicos");
            const description = label(card, "Integrá signos, síntomas, laboratorio y fisiopatología.");
            const arrow = symbol(card, "arrow.right");

            compare(card.width, 780);
            compare(card.height, 47 + 2 * 15);
            compare(card.background.radius, 16);
            compare(card.background.borderWidth, 1);
            verifyColor(card.background.color, panelBackground(scheme));
            verifyColor(card.background.borderColor, primaryAt(scheme, 0.07));

            compare(rectangle(tile, card), Qt.rect(15, 15, 47, 47));
            compare(tile.radius, 12);
            verifyColor(tile.color, accentAt(0.09));
            const icon = symbol(tile, "waveform.path.ecg.rectangle");
            verifySymbol(icon, 19, Font.Normal);
            verifyColor(icon.color, accentAt(1));

            verifyType(title, 15, Font.DemiBold);
            verifyType(description, 10.5, Font.Normal);
            verifyColor(description.color, secondary(scheme));
            compare(rectangle(title, card).x, 15 + 47 + 15);
            verifyClose(rectangle(description, card).y, rectangle(title, card).y + title.height + 4, "description's top");
            verifyClose(rectangle(arrow, card).x + arrow.width, 780 - 15, "arrow's end");
        }
    }
}
