import QtQuick
import QtQuick.Templates as T
import Tevrin

// A button with an icon; its text is its accessible name and tool tip.
T.Button {
    id: control

    property color ink: Theme.secondaryText

    implicitWidth: 32
    implicitHeight: 32
    Accessible.name: text
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: Item {
        Icon {
            anchors.centerIn: parent
            width: 20
            height: 20
            name: control.icon.name
            color: control.hovered || control.visualFocus ? Theme.text : control.ink
        }
    }
    background: Rectangle {
        radius: Theme.radiusControl
        color: control.down ? Theme.track : Theme.text
        opacity: control.down ? 1 : control.hovered ? 0.06 : 0
    }

    FocusRing {
        shown: control.visualFocus
        gap: 0
    }
    ToolTip {
        text: control.text
        shown: control.hovered
    }
}
