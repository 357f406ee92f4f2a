import QtQuick
import QtQuick.Templates as T
import Tevrin

// Selects one of a few values side by side: `model` is a list of objects with `text` and `value`. The arrow
// keys move between them.
FocusScope {
    id: control

    property var model: []
    property var value
    property string name

    signal chosen(var value)

    function step(by) {
        const at = model.findIndex(each => each.value === value) + by;
        if (at < 0 || at >= model.length)
            return;
        chosen(model[at].value);
        segments.itemAt(at).forceActiveFocus(Qt.TabFocusReason);
    }

    implicitWidth: row.width + 4
    implicitHeight: 32
    Accessible.role: Accessible.Grouping
    Accessible.name: name
    Keys.onLeftPressed: step(-1)
    Keys.onRightPressed: step(1)

    Rectangle {
        anchors.fill: parent
        radius: Theme.radiusControl
        color: Theme.track
    }
    Row {
        id: row

        x: 2
        y: 2
        height: parent.height - 4

        Repeater {
            id: segments

            model: control.model

            // qmllint disable unqualified
            T.AbstractButton {
                id: segment

                required property var modelData
                readonly property bool chosen: modelData.value === control.value

                height: row.height
                implicitWidth: implicitContentWidth + 24
                text: modelData.text
                focus: chosen
                focusPolicy: chosen ? Qt.StrongFocus : Qt.ClickFocus // Tab reaches the selected one
                Accessible.role: Accessible.RadioButton
                Accessible.name: text
                Accessible.checkable: true
                Accessible.checked: chosen
                onClicked: control.chosen(modelData.value)

                background: Rectangle {
                    radius: Theme.radiusControl - 2
                    color: segment.chosen ? Theme.surface : "transparent"
                    border.width: segment.chosen ? 1 : 0
                    border.color: Theme.line
                }
                contentItem: Label {
                    text: segment.text
                    color: segment.chosen || segment.hovered ? Theme.text : Theme.secondaryText
                    font.weight: segment.chosen ? Font.DemiBold : Font.Normal
                    wrapMode: Text.NoWrap
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                    Accessible.ignored: true
                }

                FocusRing {
                    shown: segment.visualFocus
                    innerRadius: Theme.radiusControl - 2
                    gap: 0
                }
            }
            // qmllint enable unqualified
        }
    }
}
