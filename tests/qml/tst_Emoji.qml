pragma ComponentBehavior: Bound

import QtQuick
import QtTest
import Aulora.Render
import Aulora.Text
import Aulora.Theme
import Aulora.Ui

/// The three kinds of items that show text of a person: labels, the composer, messages.
Rectangle {
    id: root

    width: 400
    height: 300
    color: "white"

    Flickable {
        id: flickable

        anchors.fill: parent
        contentHeight: column.height

        Column {
            id: column

            width: parent.width

            Label {
                id: label

                color: "black"
            }

            ComposerField {
                id: field

                width: parent.width
                text: label.text
                placeholder: ""
            }

            TrackedItem {
                id: messages

                tracker: tracker
                width: parent.width
                height: 100

                PlainMessageView {
                    id: message

                    trackedItem: messages
                    wrapWidth: parent.width
                    text: label.text
                    points: 14
                    color: "black"
                }

                MarkdownMessageView {
                    id: reply

                    y: 50
                    trackedItem: messages
                    wrapWidth: parent.width
                    text: label.text
                    color: "black"
                    textScale: 1
                }
            }
        }
    }

    ViewportTracker {
        id: tracker

        flickable: flickable
        content: column
    }

    ViewTestCase {
        name: "Emoji"

        readonly property var places: [
            { tag: "label", item: label, length: () => label.implicitWidth },
            { tag: "composer", item: field, length: () => child(field, "edit").contentWidth },
            { tag: "question", item: message, length: () => message.implicitWidth },
            { tag: "reply", item: reply, length: () => reply.implicitWidth }
        ]

        /// How much colour, from 0 to 1, the most colourful pixel of an item has.
        function color(item) {
            const image = grabImage(root);
            const place = rectangle(item, root);
            let most = 0;
            for (let y = Math.ceil(place.y); y < place.y + place.height; ++y) {
                for (let x = 0; x < 60; ++x) {
                    const channels = [image.red(x, y), image.green(x, y), image.blue(x, y)];
                    most = Math.max(most, (Math.max(...channels) - Math.min(...channels)) / 255);
                }
            }
            return most;
        }

        function test_areInColor_data() {
            return places;
        }
        function test_areInColor(data) {
            label.text = "\u{1F600}";
            tryVerify(() => color(data.item) > 0.5);
            label.text = "\u{1F469}\u200D\u2695\uFE0F";
            tryVerify(() => color(data.item) > 0.5);
            label.text = "0123 A";
            tryVerify(() => color(data.item) < 0.2);
        }

        function test_areInOnePiece_data() {
            return places;
        }
        function test_areInOnePiece(data) {
            label.text = "\u{1F600}";
            grabImage(root);
            const one = data.length();
            label.text = "\u{1F469}\u200D\u2695\uFE0F";
            tryVerify(() => Math.abs(data.length() - one) <= 1);
        }
    }
}
