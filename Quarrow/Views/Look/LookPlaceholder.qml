import QtQuick
import QtQuick.Layouts
import Tevrin

// Why there is no picture, and what the user can do.
ColumnLayout {
    id: column

    readonly property bool isVideo: Look.kind === Look.Video
    readonly property bool isOversized: Look.kind === Look.Oversized

    spacing: 12

    Icon {
        name: column.isVideo ? "film" : column.isOversized ? "image" : "broken"
        color: Theme.secondaryText
        Layout.preferredWidth: 56
        Layout.preferredHeight: 56
        Layout.alignment: Qt.AlignHCenter
    }
    Heading {
        text: column.isVideo ? qsTr("视频") : column.isOversized ? qsTr("这张照片太大，不在这里打开") : qsTr("这张照片打不开")
        horizontalAlignment: Text.AlignHCenter
        Layout.fillWidth: true
    }
    Label {
        text: column.isVideo ? qsTr("用你自己的播放器来看。") : column.isOversized ? qsTr("超过 2 万像素宽或 1 亿像素的照片会占用大量内存。文件是完整的，可以用专门的程序打开。") : qsTr("文件可能损坏，或者是这里不认识的格式。原来的文件没有被动过。")
        secondary: true
        horizontalAlignment: Text.AlignHCenter
        Layout.fillWidth: true
    }
    PushButton {
        text: column.isVideo ? qsTr("播放") : qsTr("用其他程序打开")
        icon.name: "open"
        kind: column.isVideo ? PushButton.Primary : PushButton.Plain
        Layout.topMargin: 8
        Layout.alignment: Qt.AlignHCenter
        onClicked: Actions.open()
    }
}
