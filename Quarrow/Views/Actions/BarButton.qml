import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tevrin

// A button on the dark bar with a text or an icon.
T.Button {
    id: control

    implicitWidth: icon.name ? 28 : implicitContentWidth + 20
    implicitHeight: 28
    opacity: enabled ? 1 : 0.45
    Accessible.name: text
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: RowLayout {
        Label {
            visible: !control.icon.name
            text: control.text
            color: "#5CC9B8"
            font.weight: Font.DemiBold
            wrapMode: Text.NoWrap
            Layout.alignment: Qt.AlignCenter
            Accessible.ignored: true
        }
        Icon {
            visible: control.icon.name
            name: control.icon.name
            color: "#C9CBC7"
            Layout.preferredWidth: 18
            Layout.preferredHeight: 18
            Layout.alignment: Qt.AlignCenter
        }
    }
    background: Rectangle {
        radius: Theme.radiusControl
        color: "#FFFFFF"
        opacity: control.down ? 0.18 : control.hovered ? 0.1 : 0
    }

    FocusRing {
        shown: control.visualFocus
        gap: -1
        border.color: "#5CC9B8"
    }
}
