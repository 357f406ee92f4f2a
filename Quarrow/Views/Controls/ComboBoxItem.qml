import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tevrin

T.ItemDelegate {
    id: control

    property bool current: false

    implicitHeight: 32
    leftPadding: 8
    rightPadding: 8
    Accessible.name: text

    contentItem: RowLayout {
        spacing: 8

        Label {
            text: control.text
            wrapMode: Text.NoWrap
            elide: Text.ElideRight
            Layout.fillWidth: true
            Accessible.ignored: true
        }
        Icon {
            visible: control.current
            name: "check"
            color: Theme.accent
            Layout.preferredWidth: 16
            Layout.preferredHeight: 16
        }
    }
    background: Rectangle {
        radius: Theme.radiusControl
        color: control.highlighted ? Theme.accentTint : "transparent"
    }
}
