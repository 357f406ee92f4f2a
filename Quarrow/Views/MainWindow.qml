import QtQuick
import QtQuick.Layouts
import Tevrin

// The way in for photos, at a glance.
AppWindow {
    id: window

    readonly property bool wide: width >= 720

    title: qsTr("Tevrin")
    width: 840
    height: 540
    minimumWidth: 380
    minimumHeight: 360

    ScrollPage {
        anchors.fill: parent
        anchors.bottomMargin: bar.height
        padding: 32
        widest: window.wide ? 760 : 360

        Item {
            Layout.preferredHeight: Math.max(0, (window.height - bar.height - grid.implicitHeight) / 2 - 44)
        }
        GridLayout {
            id: grid

            columns: window.wide ? 2 : 1
            columnSpacing: 48
            rowSpacing: 24

            ColumnLayout {
                spacing: 8
                Layout.alignment: Qt.AlignCenter

                QRCard {
                    implicitWidth: 312
                    Layout.alignment: Qt.AlignHCenter
                }
                AddressLine {
                    Layout.fillWidth: true
                }
            }
            ColumnLayout {
                spacing: 16
                Layout.fillWidth: true
                Layout.fillHeight: false
                Layout.alignment: Qt.AlignVCenter

                Words {
                    text: qsTr("扫一扫，照片到这里")
                    font.pixelSize: Theme.hero
                    font.weight: Font.DemiBold
                    Layout.fillWidth: true
                    Accessible.role: Accessible.Heading
                }
                Words {
                    text: qsTr("用手机相机扫码，选好照片就开始传。\n原文件直接存进这台电脑，不经过云端。")
                    quiet: true
                    lineHeight: 1.15
                    Layout.fillWidth: true
                    Layout.topMargin: -8
                }
                StatusLine {}
                AddressPicker {
                    Layout.fillWidth: true
                }
                ErrorNotice {
                    Layout.fillWidth: true
                }
                FirewallNotice {
                    Layout.fillWidth: true
                }
                ReceivedCard {
                    Layout.fillWidth: true
                }
            }
        }
    }
    Rectangle {
        id: bar

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: 52
        color: Theme.surface

        Rectangle {
            width: parent.width
            height: 1
            color: Theme.line
        }
        RowLayout {
            anchors.fill: parent
            anchors.leftMargin: 16
            anchors.rightMargin: 12
            spacing: 4

            FolderRow {
                Layout.fillWidth: true
                Layout.maximumWidth: implicitContentWidth
            }
            Item {
                Layout.fillWidth: true
            }
            IconButton {
                text: qsTr("设置")
                icon.name: "settings"
                onClicked: Shell.showSettings()
            }
            IconButton {
                text: qsTr("帮助")
                icon.name: "help"
                onClicked: Shell.showHelp()
            }
        }
    }
}
