import QtQuick
import Tevrin

SettingRow {
    text: qsTr("端口")
    detail: !Server.port ? qsTr("接收还没有启动") : Server.port === Settings.port ? qsTr("手机经由 %1 端口连到这台电脑").arg(Server.port) : qsTr("首选端口被占用，实际使用 %1").arg(Server.port)

    SpinBox {
        objectName: "port"
        name: qsTr("端口")
        implicitWidth: error ? 250 : 140
        explains: true
        from: Limits.LowestPort
        to: Limits.HighestPort
        maximumLength: 5
        number: Settings.port
        error: Settings.portError
        onEntered: number => Settings.port = number
    }
}
