pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Theme

// One of everything, for looking at and for testing.
Rectangle {
    id: gallery

    property var symbolNames: []
    property string appearance: ""

    onAppearanceChanged: Theme.appearanceRawValue = appearance

    width: 720
    height: 760
    color: Theme.windowBackground

    Column {
        x: 20
        y: 20
        spacing: 16

        AuloraLogo {
            width: 430
        }

        AuloraLogo {
            width: 175
        }

        Row {
            spacing: 12

            Repeater {
                model: [10, 11, 12.5, 13, 14.5, 17, 20]

                Label {
                    required property real modelData

                    points: modelData
                    text: "Histología " + modelData
                }
            }
        }

        Row {
            spacing: 12

            Repeater {
                model: [Font.Normal, Font.Medium, Font.DemiBold, Font.Bold]

                Label {
                    required property int modelData

                    weight: modelData
                    text: "Fisiopatología " + modelData
                }
            }
        }

        Label {
            points: 8
            weight: Font.Medium
            tracking: 0.8
            color: Theme.secondary
            text: "INTELIGENCIA MÉDICA EDUCATIVA"
        }

        Repeater {
            model: [{ size: 10, weight: Font.Normal }, { size: 13, weight: Font.Medium }, { size: 15, weight: Font.Bold }, { size: 27, weight: Font.Medium }]

            Flow {
                id: line

                required property var modelData

                width: 680
                spacing: 10

                Repeater {
                    model: gallery.symbolNames

                    Symbol {
                        required property string modelData

                        name: modelData
                        size: line.modelData.size
                        weight: line.modelData.weight
                    }
                }
            }
        }

        Row {
            spacing: 16

            ContinuousRectangle {
                width: 120
                height: 80
                radius: 18
                color: "black"
            }

            ContinuousRectangle {
                width: 120
                height: 80
                radius: 15
                color: Theme.panelBackground
                borderWidth: 1
                borderColor: Theme.hairline
            }

            ContinuousRectangle {
                width: 120
                height: 80
                radius: 22
                color: Theme.accentAt(0.055)
                borderWidth: 2
                borderColor: Theme.accent
                dashPattern: [9, 7]
            }

            ContinuousRectangle {
                width: 37
                height: 37
                radius: 10
                color: Theme.accentSoft
            }

            ContinuousRectangle {
                width: 90
                height: 26
                radius: 13
                color: Theme.primaryAt(0.1)
            }

            Spinner {}

            Spinner {
                size: 12
            }
        }

        Divider {
            width: 680
        }

        Row {
            spacing: 16

            SegmentedPicker {
                width: 320
                label: "Tamaño"
                model: [{ label: "Compacto", value: "compact" }, { label: "Normal", value: "standard" }, { label: "Grande", value: "large" }]
                currentValue: "standard"
                onPicked: value => currentValue = value
            }

            Toggle {
                text: "Mostrar miniaturas"
                checked: true
            }

            Toggle {
                text: "Análisis"
            }
        }

        Row {
            spacing: 16

            PushButton {
                text: "Borrar historial"
                role: "destructive"
            }

            PushButton {
                text: "Cancelar"
                role: "default"
            }

            PlainButton {
                text: "Configuración"
                contentItem: Label {
                    text: "Configuración"
                }
            }
        }
    }
}
