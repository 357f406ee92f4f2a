import QtQuick
import QtQuick.Layouts
import Tevrin

// What to do with the code, the state of the service, and the last arrival.
ColumnLayout {
    spacing: 16

    Label {
        text: qsTr("扫一扫，照片到这里")
        font.pixelSize: Theme.hero
        font.weight: Font.DemiBold
        Layout.fillWidth: true
        Accessible.role: Accessible.Heading
    }
    Label {
        text: qsTr("用手机相机扫码，选好照片就开始传。\n原文件直接存进这台电脑，不经过云端。")
        secondary: true
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
