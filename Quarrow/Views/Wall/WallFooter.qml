import QtQuick
import QtQuick.Layouts
import Tevrin

// The save folder, the uploads in progress, and the state of the service.
Rectangle {
    id: footer

    property bool alone: false // without a header, because the wall shows the rest itself

    implicitHeight: 44
    color: Theme.surface

    Rectangle {
        width: parent.width
        height: 1
        color: Theme.line
    }
    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 16
        anchors.rightMargin: 16
        spacing: 16

        FolderRow {
            Layout.fillWidth: true
            Layout.maximumWidth: implicitContentWidth
        }
        Item {
            Layout.fillWidth: true
        }
        ProgressLine {
            visible: Arrivals.busy && !footer.alone
            spacing: 4
            Layout.fillWidth: false
            Layout.preferredWidth: 220
        }
        StatusLine {
            visible: !Arrivals.busy && !footer.alone
            Layout.fillWidth: false
            Layout.maximumWidth: implicitWidth
            Layout.preferredWidth: implicitWidth
        }
        RowLayout {
            visible: footer.alone
            spacing: 4

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
