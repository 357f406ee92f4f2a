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
            id: place

            implicitHeight: Math.max(least, window.height - bar.height - 64)
            Layout.fillWidth: true

            readonly property real least: window.wide ? Math.max(code.height, words.height) : code.height + 24 + words.height
            readonly property real upper: Math.round((height - least) / 2)

            ColumnLayout {
                id: code

                x: window.wide ? 0 : Math.round((place.width - width) / 2)
                y: window.wide ? Math.round((place.height - height) / 2) : place.upper
                width: 312
                spacing: 8

                QRCard {
                    Layout.fillWidth: true
                }
                AddressLine {
                    Layout.fillWidth: true
                }
            }
            GreetingColumn {
                id: words

                x: window.wide ? code.width + 48 : 0
                y: window.wide ? Math.round((place.height - height) / 2) : code.y + code.height + 24
                width: place.width - x
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
