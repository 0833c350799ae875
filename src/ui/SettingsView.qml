pragma ComponentBehavior: Bound

import QtQuick
import Aulora.Theme
import Aulora.Ui

/// The settings sheet's content. Each control shows a preference and asks for its change at once;
/// there is nothing to apply or cancel.
Item {
    id: settings

    required property string appearanceRawValue
    required property string textSizeRawValue
    required property bool imageAnalysisEnabled
    required property bool showImagePreviews
    required property string authorLine
    required property string credentialsLine

    signal appearanceChosen(string rawValue)
    signal textSizeChosen(string rawValue)
    signal imageAnalysisSwitched(bool enabled)
    signal imagePreviewsSwitched(bool show)
    signal clearHistoryRequested
    signal closeRequested

    implicitWidth: 560
    implicitHeight: 650

    Item {
        id: header

        width: parent.width
        height: titles.height + 2 * 24

        Column {
            id: titles

            objectName: "titles"
            x: 24
            y: 24
            spacing: 3

            Label {
                objectName: "title"
                text: "Configuración"
                points: 20
                weight: Font.DemiBold
            }

            Label {
                objectName: "subtitle"
                text: "Personalizá la experiencia de Aulora IA"
                points: 11
                color: Theme.secondary
            }
        }

        PlainButton {
            objectName: "close"
            anchors.right: parent.right
            anchors.rightMargin: 24
            anchors.verticalCenter: parent.verticalCenter
            text: "Cerrar configuración"
            onClicked: settings.closeRequested()

            contentItem: Symbol {
                name: "xmark.circle.fill"
                size: 20
                color: Theme.secondary
            }
        }
    }

    Divider {
        id: divider

        objectName: "headerDivider"
        anchors.top: header.bottom
        width: parent.width
    }

    ScrollPane {
        id: scroll

        objectName: "scroll"
        anchors.top: divider.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        contentHeight: sections.height
        barMargin: 12

        Column {
            id: sections

            objectName: "sections"
            width: scroll.width
            padding: 28
            spacing: 26

            readonly property real sectionWidth: width - leftPadding - rightPadding

            SettingsSection {
                width: sections.sectionWidth
                title: "APARIENCIA"
                subtitle: "Elegí cómo querés visualizar la aplicación."

                Row {
                    id: appearances

                    objectName: "appearances"
                    width: parent.width
                    spacing: 10

                    Repeater {
                        id: options

                        model: SettingsChoices.appearances

                        AppearanceOption {
                            required property var modelData

                            width: (appearances.width - 2 * appearances.spacing) / options.count
                            text: modelData.label
                            icon.name: modelData.icon
                            selected: settings.appearanceRawValue === modelData.value
                            onClicked: settings.appearanceChosen(modelData.value)
                        }
                    }
                }
            }

            SettingsSection {
                width: sections.sectionWidth
                title: "TEXTO DE LAS RESPUESTAS"
                subtitle: "Modificá el tamaño del texto del chat."

                SegmentedPicker {
                    objectName: "textSizes"
                    width: parent.width
                    model: SettingsChoices.textSizes
                    currentValue: settings.textSizeRawValue
                    label: "Tamaño"
                    onPicked: value => settings.textSizeChosen(value)
                }
            }

            SettingsSection {
                width: sections.sectionWidth
                title: "IMÁGENES"
                subtitle: "Controlá el análisis visual y la visualización."

                Toggle {
                    objectName: "imageAnalysis"
                    width: parent.width
                    text: "Análisis de imágenes"
                    checked: settings.imageAnalysisEnabled
                    onToggled: settings.imageAnalysisSwitched(checked)
                }

                Toggle {
                    objectName: "imagePreviews"
                    width: parent.width
                    text: "Mostrar miniaturas"
                    checked: settings.showImagePreviews
                    onToggled: settings.imagePreviewsSwitched(checked)
                }
            }

            SettingsSection {
                width: sections.sectionWidth
                title: "HISTORIAL"
                subtitle: "Administrá las conversaciones guardadas."

                PushButton {
                    objectName: "clearHistory"
                    text: "Borrar historial"
                    role: "destructive"
                    onClicked: settings.clearHistoryRequested()
                }
            }

            SettingsSection {
                width: sections.sectionWidth
                title: "ACERCA DE"
                subtitle: "Información de Aulora IA."

                AboutBlock {
                    objectName: "about"
                    width: parent.width
                    authorLine: settings.authorLine
                    credentialsLine: settings.credentialsLine
                }
            }
        }
    }
}
