pragma ComponentBehavior: Bound

import QtQuick
import Aulora.Theme

/// What an empty conversation shows: subjects, study tools and a clinical case, each of which
/// offers the beginning of a question. Every prompt ends with a space, so that the student can go
/// on typing.
Item {
    id: home

    readonly property int maximumWidth: 780
    readonly property int maximumLogoWidth: 430
    readonly property int maximumLogoHeight: 125

    signal promptChosen(string prompt)

    implicitHeight: content.height + 8 + 20

    Column {
        id: content

        y: 8
        width: Math.min(home.width, home.maximumWidth)
        anchors.horizontalCenter: parent.horizontalCenter
        spacing: 24

        Column {
            objectName: "header"
            width: parent.width
            topPadding: 8
            bottomPadding: 5
            spacing: 18

            AuloraLogo {
                objectName: "logo"
                anchors.horizontalCenter: parent.horizontalCenter
                width: Math.min(parent.width, home.maximumLogoWidth,
                                home.maximumLogoHeight * implicitWidth / implicitHeight)
            }

            Label {
                objectName: "greeting"
                anchors.horizontalCenter: parent.horizontalCenter
                text: "¿Qué querés estudiar hoy?"
                points: 17
                weight: Font.Medium
                color: Theme.primaryAt(0.62)
            }
        }

        Grid {
            id: subjects

            readonly property real cardWidth: Math.max(10, (width - 2 * spacing) / columns)

            objectName: "subjects"
            width: parent.width
            columns: 3
            spacing: 11

            SubjectCard {
                width: subjects.cardWidth
                title: "Biología Celular"
                subtitle: "Célula y función"
                icon.name: "circle.hexagongrid.fill"
                onClicked: home.promptChosen("Quiero estudiar Biología Celular. ")
            }

            SubjectCard {
                width: subjects.cardWidth
                title: "Histología"
                subtitle: "Tejidos y órganos"
                icon.name: "square.grid.3x3.fill"
                onClicked: home.promptChosen("Quiero estudiar Histología. ")
            }

            SubjectCard {
                width: subjects.cardWidth
                title: "Embriología"
                subtitle: "Desarrollo humano"
                icon.name: "figure.child"
                onClicked: home.promptChosen("Quiero estudiar Embriología. ")
            }

            SubjectCard {
                width: subjects.cardWidth
                title: "Genética"
                subtitle: "Genes y herencia"
                icon.name: "point.3.connected.trianglepath.dotted"
                onClicked: home.promptChosen("Quiero estudiar Genética. ")
            }

            SubjectCard {
                width: subjects.cardWidth
                title: "Anatomía"
                subtitle: "Estructura humana"
                icon.name: "figure.arms.open"
                onClicked: home.promptChosen("Quiero estudiar Anatomía. ")
            }

            SubjectCard {
                width: subjects.cardWidth
                title: "Medicina Interna"
                subtitle: "Clínica y razonamiento"
                icon.name: "stethoscope"
                onClicked: home.promptChosen("Quiero estudiar Medicina Interna. ")
            }
        }

        Column {
            objectName: "toolsSection"
            width: parent.width
            spacing: 10

            Label {
                objectName: "toolsCaption"
                text: "HERRAMIENTAS DE ESTUDIO"
                points: 10
                weight: Font.DemiBold
                tracking: 0.8
                color: Theme.secondary
            }

            Row {
                id: tools

                readonly property real buttonWidth: (width - 3 * spacing) / 4

                objectName: "tools"
                width: parent.width
                spacing: 9

                CompactToolButton {
                    width: tools.buttonWidth
                    title: "Explicar"
                    icon.name: "book.pages"
                    onClicked: home.promptChosen("Explicame paso a paso: ")
                }

                CompactToolButton {
                    width: tools.buttonWidth
                    title: "Practicar"
                    icon.name: "questionmark.circle"
                    onClicked: home.promptChosen("Creá preguntas de autoevaluación sobre: ")
                }

                CompactToolButton {
                    width: tools.buttonWidth
                    title: "Comparar"
                    icon.name: "arrow.left.arrow.right"
                    onClicked: home.promptChosen("Compará estos conceptos: ")
                }

                CompactToolButton {
                    width: tools.buttonWidth
                    title: "Razonar"
                    icon.name: "waveform.path.ecg"
                    onClicked: home.promptChosen("Ayudame a razonar clínicamente sobre: ")
                }
            }
        }

        ClinicalCaseCard {
            width: parent.width
            onClicked: home.promptChosen("Quiero trabajar con un caso clínico sobre: ")
        }
    }
}
