import QtQuick

/// The bar above the chat, with the connection's status at its trailing end.
Item {
    id: bar

    required property bool isLoading

    implicitHeight: 50

    StatusChip {
        anchors.right: parent.right
        anchors.rightMargin: 27
        anchors.verticalCenter: parent.verticalCenter
        isLoading: bar.isLoading
    }
}
