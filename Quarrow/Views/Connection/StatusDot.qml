import QtQuick
import Tevrin

Rectangle {
    property int tone: Status.Pending

    implicitWidth: 8
    implicitHeight: 8
    radius: 4
    color: tone === Status.Good ? Theme.success : tone === Status.Warning ? Theme.warning : tone === Status.Bad ? Theme.danger : Theme.secondaryText

    Behavior on color {
        enabled: !Theme.reducedMotion

        ColorAnimation {
            duration: Theme.motion
        }
    }
}
