import QtQuick
import QtQuick.Layouts
import Tevrin

// The content of the panel under the tray icon. At its implicit height nothing scrolls.
FocusScope {
    id: panel

    // The user closed it.
    signal dismissed

    implicitWidth: 300
    implicitHeight: page.fittingHeight + footer.height
    focus: true
    Keys.onEscapePressed: dismissed()
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("接收照片")

    Rectangle {
        anchors.fill: parent
        color: Theme.background
        border.width: 1
        border.color: Theme.line
    }
    ScrollPage {
        id: page

        objectName: "page"
        anchors.fill: parent
        anchors.bottomMargin: footer.height
        padding: 16

        ErrorNotice {
            id: trouble

            Layout.fillWidth: true
        }
        QRCard {
            // On small screens two notices only fit beside a smaller code.
            readonly property real filledHeight: trouble.visible && obstacle.visible ? 188 : width

            Layout.fillWidth: true
            Layout.preferredHeight: filled ? filledHeight : 148
        }
        AddressLine {
            Layout.fillWidth: true
            Layout.topMargin: -4
        }
        AddressPicker {
            Layout.fillWidth: true
        }
        StatusLine {}
        FirewallNotice {
            id: obstacle

            Layout.fillWidth: true
        }
        ProgressLine {}
        WaitingLine {}
        LastNote {}
        Separator {}
        GalleryToggle {
            Layout.fillWidth: true
        }
        FolderRow {
            Layout.fillWidth: true
        }
    }
    Rectangle {
        id: footer

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: 1
        height: 61
        color: Theme.surface

        Rectangle {
            width: parent.width
            height: 1
            color: Theme.line
        }
        RowLayout {
            anchors.fill: parent
            anchors.margins: 4
            anchors.topMargin: 5
            spacing: 4

            FooterButton {
                text: qsTr("照片墙")
                icon.name: "wall"
                Layout.fillWidth: true
                onClicked: Shell.showMainWindow()
            }
            FooterButton {
                text: qsTr("设置")
                icon.name: "settings"
                Layout.fillWidth: true
                onClicked: Shell.showSettings()
            }
            FooterButton {
                text: qsTr("帮助")
                icon.name: "help"
                Layout.fillWidth: true
                onClicked: Shell.showHelp()
            }
            FooterButton {
                text: qsTr("退出")
                icon.name: "power"
                Layout.fillWidth: true
                onClicked: Shell.quit()
            }
        }
    }
}
