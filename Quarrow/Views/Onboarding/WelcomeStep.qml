import QtQuick
import QtQuick.Layouts
import Tevrin

ColumnLayout {
    spacing: 24

    Icon {
        name: "art"
        colors: Theme.artwork
        Layout.preferredWidth: 272
        Layout.preferredHeight: 168
        Layout.alignment: Qt.AlignHCenter
    }
    StepText {
        title: qsTr("手机里的照片，扫一扫就到电脑")
        text: qsTr("手机和电脑在同一个局域网里，扫码、选照片就能传。\n不用装 App，不经过云端，存下来的就是原文件。")
    }
}
