import QtQuick
import QtQuick.Templates as T
import Tevrin

// A slider, dragged or stepped with the arrow keys; `valueText` is shown beside it.
T.Slider {
    id: control

    property string name
    property string valueText
    property real valueWidth: 40 // fixed, so that the line keeps its length

    implicitWidth: 200
    implicitHeight: 32
    leftPadding: 2
    rightPadding: valueText ? valueWidth + 14 : 2
    opacity: enabled ? 1 : 0.45
    snapMode: T.Slider.SnapAlways
    Accessible.name: name
    Accessible.description: valueText

    background: Rectangle {
        x: control.leftPadding
        y: (control.height - height) / 2
        width: control.availableWidth
        height: 4
        radius: 2
        color: Theme.track

        Rectangle {
            width: Math.max(parent.height, control.visualPosition * parent.width)
            height: parent.height
            radius: 2
            color: Theme.accent
        }
    }
    handle: Rectangle {
        x: control.leftPadding + control.visualPosition * (control.availableWidth - width)
        y: (control.height - height) / 2
        width: 20
        height: 20
        radius: 10
        color: Theme.dark ? Theme.text : Theme.surface
        border.width: 1
        border.color: control.pressed || control.hovered ? Theme.accent : Theme.edge

        Rectangle {
            anchors.centerIn: parent
            width: 6
            height: 6
            radius: 3
            color: Theme.dark ? Theme.textOnAccent : Theme.accent
            visible: control.pressed
        }
        FocusRing {
            shown: control.visualFocus
            innerRadius: 10
        }
    }

    Label {
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        width: control.valueWidth
        visible: text
        text: control.valueText
        wrapMode: Text.NoWrap
        horizontalAlignment: Text.AlignRight
        Accessible.ignored: true
    }
}
