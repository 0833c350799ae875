pragma ComponentBehavior: Bound

import QtQuick
import QtTest
import Aulora.Theme
import Aulora.Ui

Item {
    id: root

    property string appearanceRawValue
    property string textSizeRawValue
    property bool imageAnalysisEnabled
    property bool showImagePreviews

    width: 700
    height: 700

    Component {
        id: component

        SettingsView {
            width: implicitWidth
            height: implicitHeight
            appearanceRawValue: root.appearanceRawValue
            textSizeRawValue: root.textSizeRawValue
            imageAnalysisEnabled: root.imageAnalysisEnabled
            showImagePreviews: root.showImagePreviews
            authorLine: "EQUIPO DE PRUEBA"
            credentialsLine: "UNA COSA · OTRA COSA · 2026"
            onAppearanceChosen: rawValue => root.appearanceRawValue = rawValue
            onTextSizeChosen: rawValue => root.textSizeRawValue = rawValue
            onImageAnalysisSwitched: enabled => root.imageAnalysisEnabled = enabled
            onImagePreviewsSwitched: show => root.showImagePreviews = show
        }
    }

    SignalSpy {
        id: cleared

        signalName: "clearHistoryRequested"
    }

    SignalSpy {
        id: closed

        signalName: "closeRequested"
    }

    ViewTestCase {
        name: "SettingsView"

        property SettingsView settings: null

        function init() {
            root.appearanceRawValue = "system";
            root.textSizeRawValue = "standard";
            root.imageAnalysisEnabled = true;
            root.showImagePreviews = true;
            settings = createTemporaryObject(component, root);
            verify(settings !== null);
            for (const spy of [cleared, closed]) {
                spy.target = settings;
                spy.clear();
            }
        }

        function cleanup() {
            Theme.appearanceRawValue = "light";
        }

        function verifyDivider(divider, scheme) {
            verify(divider.visible);
            compare(divider.height, 1);
            verifyColor(divider.color, Qt.rgba(scheme.primary, scheme.primary, scheme.primary, 0.1));
        }

        function options() {
            return items(settings, item => item.down !== undefined && item.selected !== undefined && item.height === 68);
        }

        function sections() {
            return items(settings, item => item.title !== undefined && item.subtitle !== undefined);
        }

        /// Scrolls so that `item` can be pressed.
        function reveal(item) {
            const scroll = child(settings, "scroll");
            scroll.contentY = Math.min(rectangle(item, child(settings, "sections")).y,
                                       scroll.contentHeight - scroll.height);
        }

        function test_header_data() {
            return schemes;
        }
        function test_header(scheme) {
            useScheme(scheme);
            compare(settings.width, 560);
            compare(settings.height, 650);

            const title = label(settings, "Configuración");
            const subtitle = label(settings, "Personalizá la experiencia de Aulora IA");
            const close = child(settings, "close");
            const cross = symbol(close, "xmark.circle.fill");
            verifyType(title, 20, Font.DemiBold);
            verifyColor(title.color, primaryAt(scheme, 1));
            verifyType(subtitle, 11, Font.Normal);
            verifyColor(subtitle.color, secondary(scheme));
            compare(rectangle(title, settings).x, 24);
            compare(rectangle(title, settings).y, 24);
            verifyClose(rectangle(subtitle, settings).y, 24 + title.height + 3, "subtitle's top");
            compare(cross.size, 20);
            verifyColor(cross.color, secondary(scheme));
            verifyClose(rectangle(close, settings).x + close.width, 560 - 24, "close button's end");

            const titles = rectangle(child(settings, "titles"), settings);
            const scroll = rectangle(child(settings, "scroll"), settings);
            const divider = rectangle(child(settings, "headerDivider"), settings);
            verifyDivider(child(settings, "headerDivider"), scheme);
            compare(divider.x, 0);
            compare(divider.width, 560);
            verifyClose(divider.y, 24 + titles.height + 24, "divider's top");
            verifyClose(scroll.y, divider.y + 1, "scroll area's top");
            compare(scroll.y + scroll.height, 650);
        }

        function test_close() {
            mouseClick(child(settings, "close"));
            compare(closed.count, 1);
            compare(accessibleName(child(settings, "close")), "Cerrar configuración");
        }

        function test_sections_data() {
            return schemes;
        }
        function test_sections(scheme) {
            useScheme(scheme);
            const expected = [
                ["APARIENCIA", "Elegí cómo querés visualizar la aplicación."],
                ["TEXTO DE LAS RESPUESTAS", "Modificá el tamaño del texto del chat."],
                ["IMÁGENES", "Controlá el análisis visual y la visualización."],
                ["HISTORIAL", "Administrá las conversaciones guardadas."],
                ["ACERCA DE", "Información de Aulora IA."]
            ];
            const column = child(settings, "sections");
            const found = sections();
            compare(found.length, 5);
            let top = 28;
            for (let i = 0; i < 5; ++i) {
                const place = rectangle(found[i], column);
                compare(place.x, 28);
                compare(place.width, 560 - 2 * 28);
                verifyClose(place.y, top, expected[i][0]);
                top += place.height + 26;

                const title = label(found[i], expected[i][0]);
                const subtitle = label(found[i], expected[i][1]);
                verifyType(title, 10, Font.DemiBold, 0.8);
                verifyColor(title.color, accentAt(1));
                verifyType(subtitle, 10, Font.Normal);
                verifyColor(subtitle.color, secondary(scheme));
                verifyClose(rectangle(subtitle, found[i]).y, title.height + 12, "subtitle's top");
                const content = found[i].children[2];
                verifyClose(content.y, title.height + 12 + subtitle.height + 12, "content's top");
            }
            verifyClose(child(settings, "scroll").contentHeight, top - 26 + 28, "content height");
        }

        function test_appearanceOptions_data() {
            return schemes;
        }
        function test_appearanceOptions(scheme) {
            useScheme(scheme);
            const expected = [
                ["system", "Sistema", "circle.lefthalf.filled"],
                ["light", "Claro", "sun.max"],
                ["dark", "Oscuro", "moon"]
            ];
            const found = options();
            compare(found.length, 3);
            for (let chosen = 0; chosen < 3; ++chosen) {
                mouseClick(found[chosen]);
                compare(root.appearanceRawValue, expected[chosen][0]);
                for (let i = 0; i < 3; ++i) {
                    const selected = i === chosen;
                    const option = found[i];
                    compare(option.selected, selected);
                    compare(option.height, 68);
                    verifyClose(option.width, (504 - 2 * 10) / 3, "option's width");
                    verifyClose(option.x, i * (option.width + 10), "option's x");
                    compare(option.background.radius, 12);
                    verifyColor(option.background.color,
                                selected ? accentAt(0.09) : primaryAt(scheme, 0.025));
                    const text = label(option, expected[i][1]);
                    const icon = symbol(option, expected[i][2]);
                    verifyType(text, 11, selected ? Font.DemiBold : Font.Normal);
                    const color = selected ? accentAt(1) : primaryAt(scheme, 1);
                    verifyColor(text.color, color);
                    verifyColor(icon.color, color);
                    verifyClose(rectangle(text, option).y,
                                rectangle(icon, option).y + icon.height + 8, "text's top");
                    compare(accessibleName(option), expected[i][1]);
                    compare(option.checked, selected);
                }
            }
        }

        function test_unknownAppearanceSelectsNone_data() {
            return [{ tag: "sepia" }, { tag: "" }, { tag: "Dark" }];
        }
        function test_unknownAppearanceSelectsNone(data) {
            root.appearanceRawValue = data.tag;
            for (const option of options())
                compare(option.checked, false);
            mouseClick(options()[2]);
            compare(root.appearanceRawValue, "dark");
            compare(options()[2].checked, true);
        }

        function test_textSizes() {
            const picker = child(settings, "textSizes");
            reveal(picker);
            compare(accessibleName(picker), "Tamaño");
            const title = label(picker, "Tamaño");
            verify(title.visible);
            verifyColor(title.color, Theme.primary);
            compare(rectangle(title, picker).x, 0);
            verify(title.width < rectangle(label(picker, "Compacto"), picker).x, "beside the segments");
            const expected = [["Compacto", "compact"], ["Normal", "standard"], ["Grande", "large"]];
            for (const [text, value] of expected) {
                mouseClick(label(picker, text));
                compare(root.textSizeRawValue, value);
                compare(picker.currentValue, value);
            }
            root.textSizeRawValue = "LARGE";
            compare(picker.currentValue, "LARGE");
        }

        function test_switches_data() {
            return [
                { tag: "Análisis de imágenes", name: "imageAnalysis", property: "imageAnalysisEnabled" },
                { tag: "Mostrar miniaturas", name: "imagePreviews", property: "showImagePreviews" }
            ];
        }
        function test_switches(data) {
            const toggle = child(settings, data.name);
            reveal(toggle);
            compare(toggle.text, data.tag);
            compare(toggle.Accessible.role, Accessible.CheckBox);
            compare(accessibleName(toggle), data.tag);
            compare(toggle.checked, true);
            mouseClick(toggle);
            compare(root[data.property], false);
            compare(toggle.checked, false);
            toggle.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Space);
            compare(root[data.property], true);
            root[data.property] = false;
            compare(toggle.checked, false, "follows a change from elsewhere");
        }

        function test_clearHistory() {
            const button = child(settings, "clearHistory");
            reveal(button);
            compare(button.text, "Borrar historial");
            mouseClick(button);
            compare(cleared.count, 1);
            button.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Space);
            compare(cleared.count, 2);
        }

        function test_clearHistoryIsDestructive_data() {
            return schemes;
        }
        function test_clearHistoryIsDestructive(scheme) {
            useScheme(scheme);
            const button = child(settings, "clearHistory");
            compare(button.role, "destructive");
            verifyColor(label(button, "Borrar historial").color, Qt.color(scheme.red));
        }

        function test_about_data() {
            return schemes;
        }
        function test_about(scheme) {
            useScheme(scheme);
            const about = child(settings, "about");
            const logo = child(about, "logo");
            const tagline = label(about, "Inteligencia médica educativa orientada al aprendizaje, integración de contenidos y razonamiento médico.");
            const author = label(about, "EQUIPO DE PRUEBA");
            const credentials = label(about, "UNA COSA · OTRA COSA · 2026");
            compare(about.spacing, 12);
            compare(logo.width, 165);
            verifyClose(logo.height, 165 * logo.implicitHeight / logo.implicitWidth, "logo's height");
            verifyType(tagline, 11, Font.Normal);
            verifyColor(tagline.color, secondary(scheme));
            verifyType(author, 10.5, Font.DemiBold);
            verifyColor(author.color, primaryAt(scheme, 1));
            verifyType(credentials, 8.5, Font.Normal);
            verifyColor(credentials.color, secondary(scheme));
            verify(about.width <= 504);
            verify(tagline.width <= 504);

            const divider = child(about, "divider");
            verifyDivider(divider, scheme);
            compare(divider.width, about.width);
            let top = 0;
            for (const part of [logo, tagline, divider, author, credentials]) {
                const place = rectangle(part, about);
                compare(place.x, 0);
                verifyClose(place.y, top, part.objectName);
                top += place.height + 12;
            }
        }

        function test_everythingIsReachable() {
            const wanted = [child(settings, "close")].concat(options());
            wanted.push(child(settings, "imageAnalysis"), child(settings, "imagePreviews"), child(settings, "clearHistory"));
            wanted[0].forceActiveFocus(Qt.TabFocusReason);
            const reached = [];
            for (let i = 0; i < 14; ++i) {
                for (const item of wanted) {
                    if (item.activeFocus && !reached.includes(item))
                        reached.push(item);
                }
                keyClick(Qt.Key_Tab);
            }
            compare(reached.length, wanted.length);
        }
    }
}
