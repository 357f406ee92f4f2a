import QtQuick
import QtQuick.Layouts
import Tevrin

AppWindow {
    title: qsTr("帮助")
    width: 600
    height: 720
    minimumWidth: 380
    minimumHeight: 360

    ScrollPage {
        anchors.fill: parent
        widest: 640
        spacing: 24

        ConnectHelp {
            Layout.fillWidth: true
        }
        ShortcutHelp {
            Layout.fillWidth: true
        }
        CommandHelp {
            Layout.fillWidth: true
        }
    }
}
