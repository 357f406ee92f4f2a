import QtQuick
import QtQuick.Templates as T
import Tevrin

// Something to be ticked, with its name beside it.
T.CheckBox {
    id: control

    property string detail

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Math.max(24, implicitContentHeight)
    leftPadding: 28
    opacity: enabled ? 1 : 0.45
    Accessible.name: text
    Accessible.description: detail

    contentItem: Column {
        spacing: 2

        Words {
            width: control.availableWidth
            height: Math.max(24, implicitHeight)
            text: control.text
            verticalAlignment: Text.AlignVCenter
            Accessible.ignored: true
        }
        Words {
            width: control.availableWidth
            visible: text
            text: control.detail
            quiet: true
            font.pixelSize: Theme.caption
            Accessible.ignored: true
        }
    }
    indicator: Rectangle {
        y: 2
        width: 20
        height: 20
        radius: 6
        color: control.checked ? Theme.accent : Theme.surface
        border.width: control.checked ? 0 : 1.5
        border.color: control.hovered ? Theme.accent : Theme.edge

        Icon {
            anchors.centerIn: parent
            width: 16
            height: 16
            visible: control.checked
            name: "check"
            color: Theme.accentInk
        }
        FocusRing {
            shown: control.visualFocus
            innerRadius: 6
        }
    }
}
