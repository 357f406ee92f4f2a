import QtQuick
import Tevrin

CopyField {
    text: Server.shortcutUploadURL
    what: qsTr("快捷指令上传地址")
    placeholder: qsTr("连上局域网后，这里会显示地址")
}
