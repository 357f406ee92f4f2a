import QtQuick
import QtQuick.Templates as T
import Tevrin

// Goes to the next photo; visible under the pointer and with focus.
T.Button {
    id: control

    anchors.top: parent.top
    anchors.bottom: parent.bottom
    width: 72
    focusPolicy: Qt.TabFocus
    Accessible.name: text
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: Item {
        Rectangle {
            anchors.centerIn: parent
            width: 44
            height: 44
            radius: 22
            color: Theme.surface
            border.width: 1
            border.color: Theme.line
            opacity: !control.enabled ? 0 : control.down ? 0.8 : control.hovered || control.visualFocus ? 1 : 0

            Behavior on opacity {
                enabled: !Theme.reducedMotion

                NumberAnimation {
                    duration: Theme.motion
                }
            }
            Icon {
                anchors.centerIn: parent
                name: control.icon.name
                color: Theme.text
            }
            FocusRing {
                shown: control.visualFocus
                innerRadius: 22
            }
        }
    }
}
