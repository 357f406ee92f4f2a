import QtQuick
import Tevrin

Row {
    id: dots

    property int count: 1
    property int current: 0

    spacing: 8
    Accessible.role: Accessible.Indicator
    Accessible.name: qsTr("第 %1 步，共 %2 步").arg(current + 1).arg(count)

    Repeater {
        model: dots.count

        // qmllint disable unqualified
        Rectangle {
            required property int index

            width: index === dots.current ? 20 : 8
            height: 8
            radius: 4
            color: index === dots.current ? Theme.accent : Theme.track

            Behavior on width {
                enabled: !Theme.reducedMotion

                NumberAnimation {
                    duration: Theme.motion
                    easing.type: Easing.OutCubic
                }
            }
        }
        // qmllint enable unqualified
    }
}
