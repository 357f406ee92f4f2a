import QtQuick
import Tevrin

SettingRow {
    text: qsTr("端口")
    detail: !Server.port ? qsTr("接收还没有启动") : Server.port === Shell.preferredPort ? qsTr("手机经由 %1 端口连到这台电脑").arg(Server.port) : qsTr("首选端口被占用，实际使用 %1").arg(Server.port)
}
