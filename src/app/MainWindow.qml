pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

import Aulora.State
import Aulora.Service

// The one window: conversations on the left, the chat and its composer on the right.
ApplicationWindow {
    id: window

    required property ContentView contentView
    required property SendFlow sendFlow
    required property string authorLine
    required property string credentialsLine

    width: 1120
    height: 820
    minimumWidth: 940
    minimumHeight: 700
    visible: true
    title: qsTr("Aulora IA")

    RowLayout {
        anchors.fill: parent
        spacing: 0

        ColumnLayout {
            Layout.preferredWidth: 240
            Layout.fillHeight: true

            Button {
                Layout.fillWidth: true
                text: "Nueva conversación"
                onClicked: window.contentView.startNewConversation()
            }
            ListView {
                Layout.fillWidth: true
                Layout.fillHeight: true
                clip: true
                model: window.contentView.conversations
                delegate: ItemDelegate {
                    required property var conversationID
                    required property string title
                    required property int messageCount
                    required property bool selected

                    width: ListView.view.width
                    text: title
                    highlighted: selected
                    Accessible.role: Accessible.ListItem
                    Accessible.name: title
                    Accessible.description: messageCount + " mensajes"
                    Accessible.selectable: true
                    Accessible.selected: selected
                    onClicked: window.contentView.selectConversation(conversationID)
                }
            }
        }

        ColumnLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true

            Text {
                text: window.contentView.isLoading ? "Procesando" : "En línea"
                textFormat: Text.PlainText
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
            ListView {
                Layout.fillWidth: true
                Layout.fillHeight: true
                clip: true
                spacing: 23
                model: window.contentView.currentMessages
                delegate: Text {
                    required property string messageText
                    required property bool isUser

                    width: ListView.view.width
                    text: messageText
                    textFormat: Text.PlainText
                    wrapMode: Text.Wrap
                    horizontalAlignment: isUser ? Text.AlignRight : Text.AlignLeft
                    Accessible.role: Accessible.Paragraph
                    Accessible.name: messageText
                }
            }
            RowLayout {
                Layout.fillWidth: true

                TextField {
                    id: field

                    Layout.fillWidth: true
                    focus: true
                    text: window.contentView.messageText
                    placeholderText: "Preguntale a Aulora IA..."
                    Accessible.name: "Mensaje"
                    Accessible.description: placeholderText
                    onTextChanged: window.contentView.messageText = text
                    onAccepted: window.sendFlow.sendMessage()
                }
                Button {
                    text: "Enviar"
                    enabled: !window.contentView.isLoading
                    onClicked: window.sendFlow.sendMessage()
                }
            }
        }
    }
}
