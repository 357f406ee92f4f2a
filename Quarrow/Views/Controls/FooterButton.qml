import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tevrin

T.Button {
    id: control

    implicitWidth: 64
    implicitHeight: 52
    Accessible.name: text
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: ColumnLayout {
        spacing: 2

        Icon {
            name: control.icon.name
            color: control.hovered ? Theme.text : Theme.secondaryText
            Layout.preferredWidth: 20
            Layout.preferredHeight: 20
            Layout.alignment: Qt.AlignHCenter
        }
        Label {
            text: control.text
            color: control.hovered ? Theme.text : Theme.secondaryText
            font.pixelSize: Theme.caption
            Layout.alignment: Qt.AlignHCenter
            Accessible.ignored: true
        }
    }
    background: Rectangle {
        radius: Theme.radiusControl
        color: Theme.text
        opacity: control.down ? 0.1 : control.hovered ? 0.06 : 0
    }

    FocusRing {
        shown: control.visualFocus
        gap: -2
    }
}
