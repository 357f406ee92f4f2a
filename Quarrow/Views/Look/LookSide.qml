import QtQuick
import QtQuick.Layouts
import Tevrin

// The details of the photo.
Rectangle {
    id: side

    color: Theme.surface
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("详细信息")

    Rectangle {
        width: 1
        height: parent.height
        color: Theme.line
    }
    ScrollPage {
        anchors.fill: parent
        anchors.leftMargin: 1
        padding: 20
        spacing: 12
        focus: false

        Repeater {
            model: Look.details

            ColumnLayout {
                id: row

                required property var modelData

                spacing: 2
                Layout.fillWidth: true

                Label {
                    text: row.modelData.label
                    secondary: true
                    font.pixelSize: Theme.caption
                    Layout.fillWidth: true
                }
                Label {
                    text: row.modelData.text
                    wrapMode: Text.WrapAtWordBoundaryOrAnywhere
                    Layout.fillWidth: true
                }
            }
        }
        ColumnLayout {
            visible: Look.hasOriginal
            spacing: 8
            Layout.topMargin: 8
            Layout.fillWidth: true

            Label {
                text: Look.showsOriginal ? qsTr("现在看到的是处理前的原图。") : qsTr("处理前的原图留在 originals 文件夹里。")
                secondary: true
                Layout.fillWidth: true
            }
            PushButton {
                text: Look.showsOriginal ? qsTr("看处理后的照片") : qsTr("看原图")
                icon.name: "image"
                focusPolicy: Qt.TabFocus
                onClicked: Look.showsOriginal = !Look.showsOriginal
            }
        }
    }
}
