import QtQuick
import QtQuick.Layouts

// The code that phones scan, black on white in light and dark alike: that is what cameras read.
Rectangle {
    id: card

    readonly property bool shown: code.status === Image.Ready

    implicitWidth: 268
    implicitHeight: width
    radius: Theme.radiusCard
    color: shown ? "#FFFFFF" : Theme.surface
    border.width: 1
    border.color: Theme.line

    Image {
        id: code

        // Each module is drawn with 8 pixels; on the screen it gets as many whole dots as fit, so that it is sharp.
        readonly property real modules: implicitWidth / 8
        readonly property real dots: Math.max(1, Math.floor((card.width - 16) * Screen.devicePixelRatio / modules))

        anchors.centerIn: parent
        width: modules * dots / Screen.devicePixelRatio
        height: width
        visible: card.shown
        source: Server.qrImage
        smooth: false
        Accessible.role: Accessible.Graphic
        Accessible.name: qsTr("手机要扫的二维码")
        Accessible.description: Server.phoneURL
    }
    ColumnLayout {
        anchors.centerIn: parent
        width: card.width - 48
        visible: !card.shown
        spacing: 12

        Icon {
            name: "network"
            color: Theme.quiet
            Layout.preferredWidth: 32
            Layout.preferredHeight: 32
            Layout.alignment: Qt.AlignHCenter
        }
        Words {
            text: Status.tone === Status.Bad ? qsTr("接收启动后，这里会出现二维码") : qsTr("连上 Wi-Fi 或网线，这里就会出现二维码")
            quiet: true
            horizontalAlignment: Text.AlignHCenter
            Layout.fillWidth: true
        }
    }
}
