pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Theme

/// A question with a few answers. The answer that changes nothing has the keyboard, and Escape
/// dismisses.
ModalSheet {
    id: alert

    required property string message
    /// Of objects with a `text` and a `role`: "destructive", "cancel" or "default".
    required property var buttons

    /// The button at `index` was pressed; `dismissed` follows.
    signal picked(int index)

    padding: 20
    topPadding: 22
    bottomPadding: 18

    contentItem: Column {
        spacing: 10
        width: 260

        Label {
            width: 260
            text: alert.title
            points: 13
            weight: Font.Bold
            wrapMode: Text.Wrap
            maximumLineCount: 3
            elide: Text.ElideRight
            horizontalAlignment: Text.AlignHCenter
        }

        Label {
            width: 260
            bottomPadding: 6
            text: alert.message
            points: 11
            wrapMode: Text.Wrap
            maximumLineCount: 12
            elide: Text.ElideRight
            horizontalAlignment: Text.AlignHCenter
        }

        Repeater {
            model: alert.buttons

            PushButton {
                required property var modelData
                required property int index

                width: 260
                height: 30
                text: modelData.text
                // The safe answer is the default one.
                role: modelData.role === "cancel" ? "default" : modelData.role
                focus: prominent
                onClicked: {
                    alert.picked(index);
                    alert.close();
                }
            }
        }
    }
}
