import QtQuick
import QtQuick.Layouts
import Tevrin

// The real code; the first photo turns it into a check mark.
ColumnLayout {
    id: step

    property int before: Shell.receivedCount
    readonly property bool arrived: Shell.receivedCount > before

    spacing: 16
    Component.onCompleted: before = Shell.receivedCount

    Badge {
        visible: step.arrived
        icon: "check"
        ink: Theme.success
        color: Theme.successTint
        Layout.alignment: Qt.AlignHCenter
        Layout.bottomMargin: 8
    }
    QRCard {
        visible: !step.arrived
        implicitWidth: 248
        Layout.alignment: Qt.AlignHCenter
    }
    AddressLine {
        visible: !step.arrived && Server.phoneURL
        Layout.fillWidth: true
        Layout.topMargin: -8
    }
    StepText {
        title: step.arrived ? qsTr("收到第一张照片了") : qsTr("用手机扫这个码试试")
        text: step.arrived ? Server.lastNote : qsTr("打开手机相机对准二维码，选一张照片传过来。")
    }
    ProgressLine {}
    StatusLine {
        visible: !step.arrived && Status.tone !== Status.Good
        Layout.alignment: Qt.AlignHCenter
    }
    AddressPicker {
        visible: !step.arrived && model.length > 0
        Layout.fillWidth: true
    }
    FirewallNotice {
        Layout.fillWidth: true
    }
}
