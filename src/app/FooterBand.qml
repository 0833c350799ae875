import QtQuick
import Aulora.Theme
import Aulora.Ui

/// The band at the foot of the detail column, with the product's name and its author.
FooterStrip {
    id: band

    required property string authorLine

    Item {
        anchors.fill: parent
        anchors.topMargin: 1
        anchors.leftMargin: 28
        anchors.rightMargin: 28

        Label {
            id: product

            objectName: "product"
            anchors.verticalCenter: parent.verticalCenter
            text: "AULORA IA   ·   EDUCACIÓN MÉDICA   ·   2026"
            points: 8.5
            weight: Font.Medium
            tracking: 1.25
            color: Qt.rgba(1, 1, 1, 0.76)
        }

        Label {
            objectName: "author"
            anchors.left: product.right
            anchors.leftMargin: 28
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            horizontalAlignment: Text.AlignRight
            text: band.authorLine
            points: 8.5
            weight: Font.Medium
            tracking: 1.15
            color: Qt.rgba(1, 1, 1, 0.76)
            elide: Text.ElideRight
        }
    }
}
