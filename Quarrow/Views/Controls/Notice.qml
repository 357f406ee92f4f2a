import QtQuick
import QtQuick.Layouts
import Tevrin

// A problem and what to do about it.
Rectangle {
    id: notice

    property string text
    property string command
    property bool dismissable: false
    property bool grave: false

    signal dismissed

    implicitWidth: 268
    implicitHeight: column.implicitHeight + 24
    radius: Theme.radiusCard
    color: grave ? Theme.dangerTint : Theme.warningTint
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    ColumnLayout {
        id: column

        anchors.fill: parent
        anchors.margins: 12
        spacing: 8

        RowLayout {
            spacing: 8

            Icon {
                name: "alert"
                color: notice.grave ? Theme.danger : Theme.warning
                Layout.preferredWidth: 20
                Layout.preferredHeight: 20
                Layout.alignment: Qt.AlignTop
            }
            Label {
                text: notice.text
                Layout.fillWidth: true
                Accessible.ignored: true
            }
            IconButton {
                visible: notice.dismissable
                text: qsTr("知道了")
                icon.name: "close"
                implicitWidth: 24
                implicitHeight: 24
                Layout.alignment: Qt.AlignTop
                onClicked: notice.dismissed()
            }
        }
        CopyField {
            visible: notice.command
            text: notice.command
            what: qsTr("命令")
            Layout.fillWidth: true
        }
    }
}
