import QtQuick
import QtQuick.Layouts
import Tevrin

// The code that phones scan, black on white in light and dark mode, because cameras expect that.
Rectangle {
    id: card

    readonly property bool filled: Server.phoneURL

    implicitWidth: 268
    implicitHeight: width
    radius: Theme.radiusCard
    color: filled ? "#FFFFFF" : Theme.surface
    border.width: 1
    border.color: Theme.line

    QRCode {
        anchors.fill: parent
        anchors.margins: 16
        visible: card.filled
        text: Server.phoneURL
        Accessible.role: Accessible.Graphic
        Accessible.name: qsTr("手机要扫的二维码")
        Accessible.description: Server.phoneURL
    }
    ColumnLayout {
        anchors.centerIn: parent
        visible: !card.filled
        spacing: 12

        Icon {
            name: "network"
            color: Theme.secondaryText
            Layout.preferredWidth: 32
            Layout.preferredHeight: 32
            Layout.alignment: Qt.AlignHCenter
        }
        Label {
            text: Status.tone === Status.Bad ? qsTr("接收启动后，\n这里会出现二维码") : qsTr("连上 Wi-Fi 或网线，\n这里就会出现二维码")
            secondary: true
            horizontalAlignment: Text.AlignHCenter
        }
    }
}
