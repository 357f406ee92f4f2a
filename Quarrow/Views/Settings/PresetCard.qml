import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tevrin

// One of several choices with its description.
T.RadioButton {
    id: control

    property string detail

    implicitWidth: 240
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    padding: 14
    rightPadding: 44
    Accessible.name: text
    Accessible.description: detail
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: ColumnLayout {
        spacing: 2

        Label {
            text: control.text
            font.weight: Font.DemiBold
            Layout.fillWidth: true
            Accessible.ignored: true
        }
        Label {
            text: control.detail
            secondary: true
            font.pixelSize: Theme.caption
            Layout.fillWidth: true
            Layout.fillHeight: true
            Accessible.ignored: true
        }
    }
    indicator: Rectangle {
        x: control.width - width - 14
        y: 14
        width: 20
        height: 20
        radius: 10
        color: control.checked ? Theme.accent : "transparent"
        border.width: control.checked ? 0 : 1.5
        border.color: Theme.edge

        Icon {
            anchors.centerIn: parent
            visible: control.checked
            name: "check"
            color: Theme.textOnAccent
            width: 14
            height: 14
        }
    }
    background: Rectangle {
        radius: Theme.radiusCard
        color: control.checked ? Theme.accentTint : Theme.surface
        border.width: control.checked ? 1.5 : 1
        border.color: control.checked ? Theme.accent : control.hovered ? Theme.edge : Theme.line

        FocusRing {
            shown: control.visualFocus
            innerRadius: Theme.radiusCard
        }
    }
}
