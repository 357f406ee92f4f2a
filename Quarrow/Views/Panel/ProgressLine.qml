import QtQuick
import QtQuick.Layouts
import Tevrin

// The uploads in progress.
ColumnLayout {
    visible: Arrivals.busy
    spacing: 8

    RowLayout {
        spacing: 8

        Label {
            text: Arrivals.sentence
            Layout.fillWidth: true
        }
        Label {
            text: Arrivals.pace
            secondary: true
            font.pixelSize: Theme.caption
        }
    }
    Rectangle {
        color: Theme.track
        radius: 2
        Layout.fillWidth: true
        Layout.preferredHeight: 4
        Accessible.role: Accessible.ProgressBar
        Accessible.name: qsTr("接收进度")

        Rectangle {
            width: Math.max(height, parent.width * Arrivals.share)
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
