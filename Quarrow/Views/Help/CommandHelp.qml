import QtQuick
import QtQuick.Layouts
import Tevrin

Section {
    title: qsTr("命令行")

    Label {
        text: qsTr("别的电脑或脚本也能传，请求体就是文件本身：")
        secondary: true
        Layout.fillWidth: true
    }
    CopyField {
        text: Phrases.curlCommand(Server.shortcutUploadURL)
        what: qsTr("上传命令")
        placeholder: qsTr("连上局域网后，这里会显示命令")
        Layout.fillWidth: true
    }
}
