pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Theme

/// One choice of a few, side by side. It shows what it is given: a press asks for another value by
/// `picked`, and a current value that is none of the model's selects nothing.
FocusScope {
    id: picker

    /// Of objects with a `label` and a `value`.
    required property var model
    required property string currentValue
    property string label: ""

    signal picked(string value)

    readonly property int currentIndex: model.findIndex(segment => segment.value === currentValue)

    function pickNeighbour(step: int) {
        const index = Math.max(0, Math.min(model.length - 1, currentIndex + step));
        if (index !== currentIndex)
            picked(model[index].value);
    }

    implicitWidth: row.implicitWidth
    implicitHeight: row.implicitHeight
    Accessible.role: Accessible.Grouping
    Accessible.name: label

    Keys.onLeftPressed: pickNeighbour(-1)
    Keys.onRightPressed: pickNeighbour(1)

    Row {
        id: row

        width: picker.width
        spacing: 8

        Label {
            id: title

            anchors.verticalCenter: parent.verticalCenter
            visible: text !== ""
            text: picker.label
            Accessible.ignored: true
        }

        ContinuousRectangle {
            implicitWidth: segments.implicitWidth + 4
            width: title.visible ? row.width - title.width - row.spacing : row.width
            height: 26
            radius: 7
            color: Theme.primaryAt(0.07)

            Row {
                id: segments

                x: 2
                y: 2
                width: parent.width - 4
                height: parent.height - 4

                Repeater {
                    id: repeater

                    model: picker.model

                    PlainRadioButton {
                        id: segment

                        required property var modelData
                        required property int index

                        text: modelData.label
                        width: segments.width / repeater.count
                        height: segments.height
                        leftPadding: 12
                        rightPadding: 12
                        focusRadius: 5
                        checked: index === picker.currentIndex
                        focus: checked
                        // One tab stop for all: the selected segment, or the first without one.
                        focusPolicy: checked || (picker.currentIndex < 0 && index === 0) ? Qt.TabFocus : Qt.NoFocus
                        onClicked: picker.picked(modelData.value)

                        background: ContinuousRectangle {
                            visible: segment.checked
                            radius: segment.focusRadius
                            color: Theme.dark ? Theme.primaryAt(0.25) : Theme.textBackground
                            borderWidth: 0.5
                            borderColor: Theme.separator
                        }
                        contentItem: Label {
                            text: segment.text
                            points: 12
                            weight: segment.checked ? Font.Medium : Font.Normal
                            horizontalAlignment: Text.AlignHCenter
                            verticalAlignment: Text.AlignVCenter
                            Accessible.ignored: true
                        }
                    }
                }
            }
        }
    }
}
