import QtQuick
import QtQuick.Layouts
import Tevrin

// Shown when the last window closes and there is no tray icon.
AppWindow {
    id: window

    // Continue in the background.
    signal stay

    title: qsTr("继续接收照片？")
    width: 420
    height: page.implicitHeight + 48
    minimumWidth: 320
    minimumHeight: page.implicitHeight + 48
    flags: Qt.Dialog
    modality: Qt.ApplicationModal

    Shortcut {
        sequences: ["Escape"]
        onActivated: window.close()
    }
    ColumnLayout {
        id: page

        x: 24
        y: 24
        width: window.width - 48
        spacing: 12

        Heading {
            text: window.title
            Layout.fillWidth: true
        }
        Label {
            text: qsTr("留在后台，手机就能接着传。想再打开窗口时，从应用列表里启动 Tevrin 就行。")
            secondary: true
            Layout.fillWidth: true
        }
        RowLayout {
            spacing: 8
            Layout.topMargin: 12
            Layout.alignment: Qt.AlignRight

            PushButton {
                objectName: "quit"
                text: qsTr("退出")
                onClicked: Shell.quit()
            }
            PushButton {
                objectName: "stay"
                focus: true
                kind: PushButton.Primary
                text: qsTr("留在后台")
                onClicked: window.stay()
            }
        }
    }
}
