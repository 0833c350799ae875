import QtQuick
import Aulora.Theme

/// A titled group of settings: its children are placed below its header.
Column {
    id: section

    required property string title
    required property string subtitle

    spacing: 12

    Label {
        objectName: "title"
        text: section.title
        points: 10
        weight: Font.DemiBold
        tracking: 0.8
        color: Theme.accent
    }

    Label {
        objectName: "subtitle"
        width: parent.width
        text: section.subtitle
        points: 10
        color: Theme.secondary
        wrapMode: Text.Wrap
    }
}
