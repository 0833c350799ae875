pragma ComponentBehavior: Bound

import QtQuick
import QtTest
import Aulora.Render
import Aulora.Text
import Aulora.Test
import Aulora.Theme

Rectangle {
    id: root

    width: 1400
    height: 1000
    color: Theme.textBackground

    Flickable {
        id: list

        anchors.fill: parent
        contentHeight: stack.height

        Column {
            id: stack
        }
    }

    ViewportTracker {
        id: viewportTracker

        flickable: list
        content: stack
    }

    Component {
        id: component

        MessageBubble {
            height: implicitHeight
            tracker: viewportTracker
        }
    }

    /// A message that something is drawn around.
    Component {
        id: decoratedComponent

        Rectangle {
            property alias bubble: bubble

            width: 400
            height: bubble.height + 20
            color: "transparent"
            border.color: "gray"

            Item {
                y: 10

                MessageBubble {
                    id: bubble

                    width: 400
                    height: implicitHeight
                    tracker: viewportTracker
                    messageText: "█████"
                    appendedText: ""
                    isUser: false
                    hasAttachmentName: false
                    attachmentName: ""
                    imagePreviewData: new ArrayBuffer(0)
                    textScale: 1
                    showImagePreview: true
                }
            }
        }
    }

    /// One line of text as Qt measures it.
    FontMetrics {
        id: ruler
    }

    SamplePictures {
        id: pictures
    }

    SignalSpy {
        id: tapped

        signalName: "imageTapped"
    }

    ViewTestCase {
        name: "MessageBubble"

        readonly property string longText: "La insuficiencia cardíaca es un síndrome clínico. ".repeat(40)
        readonly property var textScales: [0.9, 1, 1.15]
        /// Of the list of messages in windows 940, 1120 and 1600 wide beside a sidebar of 240.
        readonly property var listWidths: [940 - 240 - 64, 1120 - 240 - 64, 1600 - 240 - 64]

        function make(fields) {
            const bubble = createTemporaryObject(component, stack, Object.assign({
                width: listWidths[1],
                messageText: "",
                appendedText: "",
                isUser: true,
                hasAttachmentName: false,
                attachmentName: "",
                imagePreviewData: new ArrayBuffer(0),
                textScale: 1,
                showImagePreview: true
            }, fields));
            verify(bubble !== null);
            tryVerify(() => bubble.nearViewport);
            tapped.target = bubble;
            tapped.clear();
            return bubble;
        }

        function cleanup() {
            Theme.appearanceRawValue = "light";
        }

        function everySchemeAndScale() {
            const cases = [];
            for (const scheme of schemes)
                for (const scale of textScales)
                    cases.push({ tag: scheme.tag + ", " + scale, scheme: scheme, scale: scale });
            return cases;
        }

        function everyWidth() {
            return listWidths.map(width => ({ tag: String(width), width: width }));
        }

        function sizeOf(text, points, weight) {
            ruler.font = Theme.font(points, weight);
            return Qt.size(Math.ceil(ruler.advanceWidth(text)), Math.ceil(ruler.height));
        }

        function lineHeight(points, weight) {
            return sizeOf("x", points, weight ?? Font.Normal).height;
        }

        /// The texts of a message that wrap, from top to bottom.
        function paragraphs(bubble) {
            return items(bubble, item => item.wrapWidth !== undefined).sort((a, b) => rectangle(a, bubble).y - rectangle(b, bubble).y);
        }

        function question(bubble) {
            const found = paragraphs(bubble);
            return found[found.length - 1];
        }

        function reply(bubble) {
            const found = items(bubble, item => item.dotColor !== undefined);
            compare(found.length, 1);
            return found[0];
        }

        function thumbnails(bubble) {
            return items(bubble, item => item.text === "Ver imagen adjunta" && item.visible);
        }

        /// The thumbnail, which is there once its size was read.
        function thumbnail(bubble) {
            tryVerify(() => thumbnails(bubble).length === 1);
            return thumbnails(bubble)[0];
        }

        function verifyRight(item, bubble, right, what) {
            const place = rectangle(item, bubble);
            verifyClose(place.x + place.width, right, what);
        }

        function verifyEqualBytes(actual, expected) {
            compare(Array.from(new Uint8Array(actual)), Array.from(new Uint8Array(expected)));
        }

        // The user's side.

        function test_question_data() {
            return everySchemeAndScale();
        }
        function test_question(data) {
            useScheme(data.scheme);
            const text = "¿Qué es la mitosis?";
            const bubble = make({ messageText: text, textScale: data.scale });
            const background = child(bubble, "background");
            const shown = question(bubble);
            const size = sizeOf(text, 14.5 * data.scale, Font.Normal);

            verifyColor(background.color, Qt.rgba(0, 0, 0, 1));
            compare(background.radius, 18);
            verifyRight(background, bubble, bubble.width, "trailing edge");
            verifyClose(background.width, size.width + 2 * 17, "bubble's width");
            verifyClose(background.height, size.height + 2 * 12, "bubble's height");
            compare(bubble.height, background.height);

            compare(shown.text, text);
            verifyClose(shown.points, 14.5 * data.scale, "points");
            verifyColor(shown.color, Qt.rgba(1, 1, 1, 1));
            compare(rectangle(shown, background), Qt.rect(17, 12, size.width, size.height));
            compare(paragraphs(bubble).length, 1);
            compare(thumbnails(bubble).length, 0);
        }

        function test_questionIsNoMarkdown() {
            const bubble = make({ messageText: "# Título\n- **punto**\n1. <b>uno</b> &amp; [x](y)" });
            compare(question(bubble).plainText, "# Título\n- **punto**\n1. <b>uno</b> &amp; [x](y)");
            compare(bubble.height, 3 * lineHeight(14.5) + 2 * 12);
            compare(items(bubble, item => item.dotColor !== undefined).length, 0);
        }

        function test_emptyQuestion() {
            const bubble = make({ messageText: "" });
            const background = child(bubble, "background");
            compare(background.width, 2 * 17);
            compare(background.height, lineHeight(14.5) + 2 * 12);
            verify(question(bubble).visible);
        }

        function test_widestQuestion_data() {
            return everyWidth();
        }
        function test_widestQuestion(data) {
            const widest = Math.min(610, data.width - 110);
            for (const text of [longText, "x".repeat(5000)]) {
                const bubble = make({ messageText: text, width: data.width });
                const background = child(bubble, "background");
                const shown = question(bubble);
                compare(shown.wrapWidth, widest - 2 * 17);
                verify(background.width <= widest, background.width);
                verify(background.width > widest - 100, background.width);
                verifyRight(background, bubble, data.width, "trailing edge");
                verify(rectangle(background, bubble).x >= 110);
                verifyRight(shown, background, background.width - 17, "text");
                verify(shown.height > 8 * lineHeight(14.5));
                compare(background.height, shown.height + 2 * 12);
            }
        }

        function test_questionInAVeryNarrowList() {
            const bubble = make({ messageText: longText, width: 120 });
            verify(bubble.height > 0);
            verifyRight(child(bubble, "background"), bubble, 120, "trailing edge");
        }

        function test_attachmentName_data() {
            return everySchemeAndScale();
        }
        function test_attachmentName(data) {
            useScheme(data.scheme);
            const bubble = make({
                messageText: "Texto",
                hasAttachmentName: true,
                attachmentName: "<b>radiografía</b>.png",
                textScale: data.scale
            });
            const background = child(bubble, "background");
            const name = child(bubble, "attachmentName");
            const size = sizeOf("<b>radiografía</b>.png", 9.5 * data.scale, Font.Normal);
            compare(name.text, "<b>radiografía</b>.png");
            compare(name.plainText, "<b>radiografía</b>.png");
            verifyClose(name.points, 9.5 * data.scale, "points");
            verifyColor(name.color, Qt.rgba(1, 1, 1, 0.72));
            compare(rectangle(name, background).y, 12);
            verifyClose(name.implicitHeight, size.height, "name's height");
            verifyRight(name, background, background.width - 17, "name");
            verifyRight(question(bubble), background, background.width - 17, "text");
            compare(rectangle(question(bubble), background).y, 12 + size.height + 8);
            compare(background.height, 12 + size.height + 8 + lineHeight(14.5 * data.scale) + 12);
            compare(background.width, size.width + 2 * 17);
        }

        function test_emptyNameStillTakesARow() {
            const bubble = make({ messageText: "Texto", hasAttachmentName: true });
            compare(bubble.height, 12 + lineHeight(9.5) + 8 + lineHeight(14.5) + 12);
        }

        function test_longNameStaysInTheBubble() {
            const bubble = make({ messageText: "", hasAttachmentName: true, attachmentName: longText });
            const background = child(bubble, "background");
            verify(background.width <= 610);
            const name = rectangle(child(bubble, "attachmentName"), background);
            verify(name.x >= 17 && name.x + name.width <= background.width - 17);
        }

        function test_thumbnail_data() {
            return [
                { tag: "very wide", width: 1200, height: 300, shown: Qt.size(300, 75) },
                { tag: "tall", width: 300, height: 1200, shown: Qt.size(55, 220) },
                { tag: "exactly as large", width: 300, height: 220, shown: Qt.size(300, 220) },
                { tag: "square", width: 700, height: 700, shown: Qt.size(220, 220) },
                { tag: "extremely wide", width: 4000, height: 1, shown: Qt.size(300, 1) }
            ];
        }
        function test_thumbnail(data) {
            const bytes = pictures.png(data.width, data.height);
            const bubble = make({ messageText: "¿Qué se ve?", imagePreviewData: bytes });
            const background = child(bubble, "background");
            const button = thumbnail(bubble);
            const picture = items(button, item => item.maximumSize !== undefined)[0];
            const textSize = sizeOf("¿Qué se ve?", 14.5, Font.Normal);
            const width = Math.max(data.shown.width, textSize.width) + 2 * 17;

            compare(Qt.size(button.width, button.height), data.shown);
            compare(rectangle(picture, button), Qt.rect(0, 0, data.shown.width, data.shown.height));
            compare(picture.radius, 13);
            compare(background.width, width);
            compare(rectangle(button, background).y, 12);
            verifyRight(button, background, width - 17, "thumbnail");
            verifyRight(question(bubble), background, width - 17, "text");
            compare(rectangle(question(bubble), background).y, 12 + data.shown.height + 8);
            compare(background.height, 12 + data.shown.height + 8 + textSize.height + 12);
            compare(items(button, item => item.color !== undefined && item.visible).length, 0, "no chrome");
            const place = rectangle(button, root);
            tryVerify(() => Qt.colorEqual(grabImage(root).pixel(place.x + Math.floor(place.width / 2), place.y + Math.floor(place.height / 2)), "#008080"));
        }

        function test_thumbnailAboveNameAboveText() {
            const bubble = make({
                messageText: "Texto",
                imagePreviewData: pictures.png(600, 300),
                hasAttachmentName: true,
                attachmentName: "eco.png"
            });
            compare(rectangle(thumbnail(bubble), bubble).y, 12);
            const name = rectangle(child(bubble, "attachmentName"), bubble);
            compare(name.y, 12 + 150 + 8);
            compare(rectangle(question(bubble), bubble).y, 12 + 150 + 8 + lineHeight(9.5) + 8);
            verifyClose(name.x + name.width, bubble.width - 17, "name's trailing edge");
        }

        function test_noThumbnail_data() {
            return [
                { tag: "previews are off", bytes: pictures.png(300, 100), show: false, name: true },
                { tag: "previews are off, no name", bytes: pictures.png(300, 100), show: false, name: false },
                { tag: "no image", bytes: new Uint8Array([0x25, 0x50, 0x44, 0x46]).buffer, show: true, name: true },
                { tag: "no image, no name", bytes: new Uint8Array([0x25, 0x50, 0x44, 0x46]).buffer, show: true, name: false },
                { tag: "no pixels", bytes: pictures.brokenPng(300, 100), show: true, name: true }
            ];
        }
        function test_noThumbnail(data) {
            const bubble = make({
                messageText: "Texto",
                imagePreviewData: data.bytes,
                showImagePreview: data.show,
                hasAttachmentName: data.name,
                attachmentName: "eco.png"
            });
            const picture = items(bubble, item => item.maximumSize !== undefined)[0];
            compare(picture !== undefined, data.show);
            tryVerify(() => thumbnails(bubble).length === 0);
            const nameHeight = data.name ? lineHeight(9.5) + 8 : 0;
            tryCompare(bubble, "height", 12 + nameHeight + lineHeight(14.5) + 12);
            if (data.name)
                compare(rectangle(child(bubble, "attachmentName"), bubble).y, 12);
            compare(child(bubble, "background").height, bubble.height);
        }

        function test_previewsSwitchedOffAndOn() {
            const bubble = make({ messageText: "Texto", imagePreviewData: pictures.png(300, 100) });
            const height = 12 + lineHeight(14.5) + 12;
            tryCompare(bubble, "height", height + 100 + 8);
            bubble.showImagePreview = false;
            compare(thumbnails(bubble).length, 0);
            tryCompare(bubble, "height", height);
            bubble.showImagePreview = true;
            tryVerify(() => thumbnails(bubble).length === 1);
            tryCompare(bubble, "height", height + 100 + 8);
        }

        function test_pressingTheThumbnail_data() {
            return [
                { tag: "pointer", press: button => mouseClick(button) },
                { tag: "Return", press: () => keyClick(Qt.Key_Return) },
                { tag: "space", press: () => keyClick(Qt.Key_Space) }
            ];
        }
        function test_pressingTheThumbnail(data) {
            const bytes = pictures.png(640, 480);
            const bubble = make({ messageText: "", imagePreviewData: bytes });
            const button = thumbnail(bubble);
            button.forceActiveFocus(Qt.TabFocusReason);
            data.press(button);
            compare(tapped.count, 1);
            verifyEqualBytes(tapped.signalArguments[0][0], bytes);
        }

        function test_questionForAssistiveProgrammes() {
            const bubble = make({ messageText: "Primera\nSegunda", hasAttachmentName: true, attachmentName: "eco.png" });
            const message = items(bubble, item => item.Accessible.role === Accessible.Paragraph)[0];
            compare(message.Accessible.name, "Primera\nSegunda");
            compare(message.Accessible.description, "eco.png");
        }

        // The assistant's side.

        function test_avatarAndHeader_data() {
            return everySchemeAndScale();
        }
        function test_avatarAndHeader(data) {
            useScheme(data.scheme);
            const bubble = make({ isUser: false, messageText: "Hola", textScale: data.scale });
            const avatar = child(bubble, "avatar");
            const monogram = label(avatar, "A");
            const header = label(bubble, "Aulora IA");

            compare(rectangle(avatar, bubble), Qt.rect(0, 0, 31, 31));
            compare(avatar.radius, 9);
            verifyColor(avatar.color, accentAt(0.09));
            verifyType(monogram, 14, Font.Bold);
            verifyColor(monogram.color, accentAt(1));
            const place = rectangle(monogram, avatar);
            verify(Math.abs(place.x + place.width / 2 - 15.5) <= 0.5, "centred across");
            verify(Math.abs(place.y + place.height / 2 - 15.5) <= 0.5, "centred down");

            verifyType(header, 11 * data.scale, Font.DemiBold);
            verifyColor(header.color, accentAt(1));
            compare(rectangle(header, bubble).x, 31 + 12);
            compare(rectangle(header, bubble).y, 0);
        }

        function test_reply_data() {
            return everySchemeAndScale();
        }
        function test_reply(data) {
            useScheme(data.scheme);
            const bubble = make({ isUser: false, messageText: "Hola", textScale: data.scale });
            const shown = reply(bubble);
            const header = lineHeight(11 * data.scale, Font.DemiBold);
            compare(rectangle(shown, bubble).x, 31 + 12);
            verifyClose(rectangle(shown, bubble).y, header + 8, "reply's y");
            compare(shown.textScale, data.scale);
            compare(shown.text, "Hola");
            verifyColor(shown.color, primaryAt(data.scheme, 1));
            verifyColor(shown.dotColor, accentAt(1));
            verifyClose(bubble.height, Math.max(31, header + 8 + lineHeight(14.5 * data.scale)), "height");
            compare(items(bubble, item => item.objectName === "typingRow").length, 0);
            compare(items(bubble, item => item.objectName === "background").length, 0);
        }

        function test_rows_data() {
            return textScales.map(scale => ({ tag: String(scale), scale: scale }));
        }
        function test_rows(data) {
            const scale = data.scale;
            const line = (points, weight) => lineHeight(points * scale, weight);
            const bubble = make({
                isUser: false,
                messageText: "# Uno\n## Dos\n### Tres\n- punto\n* punto\n1. cuatro\n\nfin **negrita**",
                textScale: scale
            });
            const heights = [
                line(19, Font.Bold),
                line(17, Font.DemiBold),
                line(15.5, Font.DemiBold),
                line(14.5),
                line(14.5),
                line(14.5),
                4,
                line(14.5)
            ];
            const expected = heights.reduce((sum, height) => sum + height) + 7 * 7;
            verifyClose(reply(bubble).implicitHeight, expected, "rows");
            verifyClose(bubble.height, line(11, Font.DemiBold) + 8 + expected, "message");
            compare(reply(bubble).plainText, "Uno\nDos\nTres\npunto\npunto\n1. cuatro\n\nfin negrita");
        }

        function test_widestReply_data() {
            return everyWidth();
        }
        function test_widestReply(data) {
            const bubble = make({ isUser: false, messageText: longText, width: data.width });
            const shown = reply(bubble);
            const widest = Math.min(680, data.width - 31 - 12 - 12);
            compare(shown.wrapWidth, widest);
            verify(shown.implicitWidth <= widest);
            verify(shown.implicitWidth > widest - 100);
            compare(rectangle(shown, bubble).x, 31 + 12);
        }

        function test_typingRow_data() {
            return everySchemeAndScale();
        }
        function test_typingRow(data) {
            useScheme(data.scheme);
            const bubble = make({ isUser: false, messageText: "", textScale: data.scale });
            const header = lineHeight(11 * data.scale, Font.DemiBold);
            const row = child(bubble, "typingRow");
            const spinner = items(row, item => item.size !== undefined)[0];
            const text = label(row, "Escribiendo…");
            const place = rectangle(text, row);

            compare(rectangle(row, bubble).x, 31 + 12);
            verifyClose(rectangle(row, bubble).y, header + 8, "row's y");
            compare(Qt.size(spinner.width, spinner.height), Qt.size(12, 12));
            compare(rectangle(spinner, row).x, 0);
            compare(place.x, 12 + 5);
            verify(Math.abs(rectangle(spinner, row).y + 6 - (place.y + place.height / 2)) <= 0.5, "centred");
            verifyType(text, 10 * data.scale, Font.Normal);
            verifyColor(text.color, secondary(data.scheme));
            verify(!reply(bubble).visible);
            verify(Math.abs(bubble.height - Math.max(31, header + 8 + row.height)) <= 1, "height");
        }

        function test_typingRowGivesWayToTheReply() {
            const bubble = make({ isUser: false, messageText: "" });
            verify(items(bubble, item => item.objectName === "typingRow").length === 1);
            bubble.messageText = "Hola\n";
            tryVerify(() => items(bubble, item => item.objectName === "typingRow").length === 0);
            verify(reply(bubble).visible);
            // A line, and the blank one that its end begins.
            tryVerify(() => reply(bubble).implicitHeight === lineHeight(14.5) + 7 + 4);
            tryCompare(bubble, "height", lineHeight(11, Font.DemiBold) + 8 + lineHeight(14.5) + 7 + 4);
        }

        function test_replyGrows() {
            const bubble = make({ isUser: false, messageText: "# Uno\nd" });
            bubble.appendedText = "os";
            bubble.appendedText = "\n- tres";
            tryVerify(() => reply(bubble).plainText === "Uno\ndos\ntres");
            compare(bubble.messageText, "# Uno\ndos\n- tres");
            bubble.messageText = "# Uno\ndos";
            tryVerify(() => reply(bubble).plainText === "Uno\ndos");
        }

        function test_onlySpacesAreAReply() {
            const bubble = make({ isUser: false, messageText: "   " });
            compare(items(bubble, item => item.objectName === "typingRow").length, 0);
            verify(reply(bubble).visible);
            compare(reply(bubble).implicitHeight, 4);
        }

        function test_replyForAssistiveProgrammes() {
            const bubble = make({ isUser: false, messageText: "# Uno\n- **dos**" });
            const message = items(bubble, item => item.Accessible.role === Accessible.Paragraph)[0];
            compare(message.Accessible.name, "Uno\ndos");
            compare(message.Accessible.description, "Aulora IA");
            bubble.messageText = "";
            compare(message.Accessible.name, "Escribiendo…");
        }

        function test_neverLooksAtImagesOfReplies() {
            const bubble = make({
                isUser: false,
                messageText: "Hola",
                imagePreviewData: pictures.png(300, 100),
                hasAttachmentName: true,
                attachmentName: "eco.png"
            });
            compare(thumbnails(bubble).length, 0);
            compare(items(bubble, item => item.objectName === "attachmentName").length, 0);
        }

        function test_decorated() {
            const message = createTemporaryObject(decoratedComponent, stack);
            const bubble = message.bubble;
            tryVerify(() => bubble.nearViewport);
            const place = rectangle(reply(bubble), root);
            tryVerify(() => grabImage(root).red(place.x + 20, place.y + 10) < 128, 5000, "the text shows");
            verify(child(bubble, "header").visible);

            list.contentY = root.height + 1000;
            tryVerify(() => !bubble.nearViewport);
            list.contentY = 0;
            tryVerify(() => grabImage(root).red(place.x + 20, place.y + 10) < 128, 5000, "again");
        }

        function test_painted_data() {
            return schemes;
        }
        function test_painted(scheme) {
            useScheme(scheme);
            const column = createTemporaryQmlObject("import QtQuick; Rectangle {}", root);
            column.color = Theme.textBackground;
            column.width = 400;
            column.height = 300;
            const user = make({ messageText: "█████", width: 400 });
            user.parent = column;
            const assistant = make({ isUser: false, messageText: "█████", width: 400 });
            assistant.parent = column;
            assistant.y = 100;
            const background = rectangle(child(user, "background"), column);
            const middle = background.y + background.height / 2;
            const level = Math.round(scheme.panel * 255);
            const replyLevel = Math.round(255 * (scheme.primary * scheme.primaryAlpha + scheme.panel * (1 - scheme.primaryAlpha)));
            let image;
            const near = (x, y, expected) => Math.abs(image.red(x, y) - expected) <= 3;
            tryVerify(() => {
                image = grabImage(column);
                return near(background.x + 30, middle, 255) && near(31 + 12 + 20, 100 + rectangle(reply(assistant), assistant).y + 10, replyLevel);
            });
            verify(near(background.x + 5, middle, 0), "black bubble");
            verify(near(background.x, background.y, level), "rounded corner");
            verify(near(31 + 12 - 4, 100 + 35, level), "no bubble behind a reply");
        }
    }
}
