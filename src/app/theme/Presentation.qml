import QtQuick

/// Makes a sheet when it is presented and lets it go once it has gone from sight, so that what is
/// rarely seen costs nothing at start and keeps nothing between presentations.
///
/// Qt's own loader refuses components that are bound to their file, before version 6.5.
Item {
    id: presentation

    required property bool presented
    default required property Component sheet

    property QtObject item: null

    function present() {
        if (presented && !item)
            item = sheet.createObject(presentation);
    }

    onPresentedChanged: present()
    Component.onCompleted: present()

    Connections {
        target: presentation.item

        function onClosed() {
            if (presentation.presented)
                return;
            presentation.item.destroy();
            presentation.item = null;
        }
    }
}
