import QtQuick
import QtQuick.Layouts
import Tevrin

// Reasons why a phone cannot connect, with the state of this computer.
Section {
    title: qsTr("手机连不上")

    HelpItem {
        icon: "network"
        title: qsTr("连同一个 Wi-Fi")
        text: qsTr("手机和电脑要在同一个局域网里，电脑插网线也可以。手机上先关掉蜂窝数据，再扫一次码。")
    }
    HelpItem {
        icon: "phone"
        title: qsTr("避开访客网络")
        text: qsTr("访客 Wi-Fi 和公共 Wi-Fi 常把设备彼此隔开。请换到主网络，或连电脑开的热点。")
    }
    HelpItem {
        icon: "link"
        title: qsTr("关掉 VPN 和代理")
        text: qsTr("手机或电脑开着 VPN 时，局域网里的连接可能被带走。先关掉，再扫一次码。")
    }
    HelpItem {
        icon: "shield"
        title: qsTr("放行防火墙")
        text: Server.firewallAdvice || (Server.port ? qsTr("这台电脑上没有发现挡住手机的防火墙。") : qsTr("接收启动后会自动检查这台电脑的防火墙。"))

        CopyField {
            visible: text
            text: Server.firewallCommand
            what: qsTr("命令")
            Layout.fillWidth: true
            Layout.topMargin: 4
        }
    }
    Separator {}
    RowLayout {
        spacing: 16

        ColumnLayout {
            spacing: 2

            Label {
                text: qsTr("本机自检")
                font.weight: Font.DemiBold
            }
            StatusLine {
                offersHelp: false
            }
        }
        PushButton {
            text: qsTr("再检查一次")
            icon.name: "refresh"
            onClicked: Shell.checkAgain()
        }
    }
}
