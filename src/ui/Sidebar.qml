pragma ComponentBehavior: Bound

import QtQuick
import Aulora.State
import Aulora.Theme

/// The first column of the window: what begins a conversation, the conversations there are, and
/// the way to the settings.
Rectangle {
    id: sidebar

    required property ConversationListModel conversations

    signal newConversationRequested
    signal conversationChosen(var id)
    signal clearHistoryRequested
    signal settingsRequested

    color: Theme.panelBackground

    Column {
        id: top

        width: parent.width

        Column {
            objectName: "header"
            width: parent.width
            topPadding: 18
            bottomPadding: 17
            spacing: 8

            AuloraLogo {
                objectName: "logo"
                anchors.horizontalCenter: parent.horizontalCenter
                width: Math.min(parent.width - 2 * 14, 175, 48 * implicitWidth / implicitHeight)
            }

            Label {
                objectName: "caption"
                anchors.horizontalCenter: parent.horizontalCenter
                text: "INTELIGENCIA MÉDICA EDUCATIVA"
                points: 8
                weight: Font.Medium
                tracking: 0.8
                color: Theme.secondary
            }
        }

        Item {
            width: parent.width
            height: newConversation.height + 16

            PlainButton {
                id: newConversation

                objectName: "newConversation"
                x: 14
                width: parent.width - 2 * 14
                height: 42
                focusRadius: 11
                leftPadding: 13
                rightPadding: 13
                text: "Nueva conversación"
                onClicked: sidebar.newConversationRequested()

                background: ContinuousRectangle {
                    radius: 11
                    color: Theme.accentSoft
                }

                contentItem: SymbolLabel {
                    icon: "square.and.pencil"
                    iconSize: 13
                    iconWeight: Font.Medium
                    text: newConversation.text
                    points: 13
                    weight: Font.Medium
                }
            }
        }

        Divider {
            objectName: "historyDivider"
            x: 14
            width: parent.width - 2 * 14
        }

        Item {
            objectName: "historyHeader"
            width: parent.width
            height: 15 + clear.height + 7

            Row {
                x: 16
                y: 15
                height: clear.height
                spacing: 8

                Label {
                    objectName: "historyTitle"
                    anchors.verticalCenter: parent.verticalCenter
                    text: "HISTORIAL"
                    points: 10
                    weight: Font.DemiBold
                    tracking: 0.7
                    color: Theme.secondary
                }

                ContinuousRectangle {
                    objectName: "countCapsule"
                    anchors.verticalCenter: parent.verticalCenter
                    width: Math.max(height, count.implicitWidth + 2 * 7)
                    height: count.implicitHeight + 2 * 3
                    radius: height / 2
                    color: Theme.primaryAt(0.05)

                    Label {
                        id: count

                        objectName: "count"
                        anchors.centerIn: parent
                        text: sidebar.conversations.count
                        points: 9
                        weight: Font.Medium
                        color: Theme.secondary
                    }
                }
            }

            PlainButton {
                id: clear

                objectName: "clear"
                y: 15
                anchors.right: parent.right
                anchors.rightMargin: 11
                width: 25
                height: 25
                text: "Borrar historial"
                onClicked: sidebar.clearHistoryRequested()

                Tooltip {
                    objectName: "tooltip"
                    button: clear
                }

                contentItem: Item {
                    Symbol {
                        anchors.centerIn: parent
                        name: "trash"
                        size: 10.5
                        weight: Font.Medium
                        color: Theme.secondary
                    }
                }
            }
        }
    }

    ConversationList {
        objectName: "list"
        anchors.top: top.bottom
        anchors.topMargin: -focusRingRoom
        anchors.bottom: foot.top
        width: parent.width
        model: sidebar.conversations
        onConversationChosen: id => sidebar.conversationChosen(id)
    }

    Column {
        id: foot

        anchors.bottom: parent.bottom
        width: parent.width

        Divider {
            objectName: "footDivider"
            x: 14
            width: parent.width - 2 * 14
        }

        PlainButton {
            id: settings

            objectName: "settings"
            width: parent.width
            height: 52
            leftPadding: 14
            rightPadding: 14
            focusRingIsInside: true
            text: "Configuración"
            onClicked: sidebar.settingsRequested()

            contentItem: SymbolLabel {
                icon: "gearshape"
                iconSize: 12
                iconWeight: Font.Medium
                iconColor: Theme.secondary
                text: settings.text
                points: 12.5
                color: Theme.secondary
            }
        }

        FooterStrip {
            objectName: "footerStrip"
            width: parent.width
        }
    }
}
