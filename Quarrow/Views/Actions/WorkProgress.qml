import QtQuick
import QtQuick.Layouts
import Tevrin

// The progress of work on many files.
ColumnLayout {
    id: progress

    property string verb // names the work
    readonly property real share: Actions.jobs.total > 0 ? Actions.jobs.done / Actions.jobs.total : 0

    spacing: 8

    Label {
        text: Actions.jobs.stopping ? qsTr("正在停止，做完手上这一张…") : qsTr("%1 %2 / %3").arg(progress.verb).arg(Math.min(Actions.jobs.done + 1, Actions.jobs.total)).arg(Actions.jobs.total)
        Layout.fillWidth: true
    }
    Rectangle {
        color: Theme.track
        radius: 2
        Layout.fillWidth: true
        Layout.preferredHeight: 4
        Accessible.role: Accessible.ProgressBar
        Accessible.name: qsTr("进度")

        Rectangle {
            width: Math.max(height, parent.width * progress.share)
            height: parent.height
            radius: 2
            color: Theme.accent

            Behavior on width {
                enabled: !Theme.reducedMotion

                NumberAnimation {
                    duration: Theme.motion
                    easing.type: Easing.OutCubic
                }
            }
        }
    }
}
