import QtQuick
import QtQuick.Layouts
import Tevrin

// The progress of an import.
Rectangle {
    id: bar

    readonly property real share: Imports.total > 0 ? Imports.done / Imports.total : 0

    implicitWidth: 360
    implicitHeight: 52
    radius: Theme.radiusCard
    color: Theme.surface
    border.width: 1
    border.color: Theme.line
    visible: Imports.running

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 16
        anchors.rightMargin: 8
        spacing: 12

        ColumnLayout {
            spacing: 6

            Label {
                text: Imports.total > 0 ? qsTr("正在导入 %1 / %2").arg(Math.min(Imports.done + 1, Imports.total)).arg(Imports.total) : qsTr("正在导入…")
                Layout.fillWidth: true
            }
            Rectangle {
                color: Theme.track
                radius: 2
                Layout.fillWidth: true
                Layout.preferredHeight: 4
                Accessible.role: Accessible.ProgressBar
                Accessible.name: qsTr("导入进度")

                Rectangle {
                    width: Math.max(height, parent.width * bar.share)
                    height: parent.height
                    radius: 2
                    color: Theme.accent
                }
            }
        }
        PushButton {
            text: qsTr("停止")
            implicitHeight: 32
            onClicked: Imports.stop()
        }
    }
}
