import QtQuick
import QtQuick.Layouts
import Tevrin

// Filter, tile size, and buttons for other windows.
Rectangle {
    id: header

    readonly property bool wide: width >= 640

    signal released // a button with focus has disappeared

    implicitHeight: 52
    color: Theme.surface

    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: 1
        color: Theme.line
    }
    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 12
        anchors.rightMargin: 12
        spacing: 8

        SegmentedControl {
            objectName: "filter"
            name: qsTr("显示哪些")
            model: [
                {
                    text: qsTr("全部"),
                    value: Wall.All
                },
                {
                    text: qsTr("照片"),
                    value: Wall.Photos
                },
                {
                    text: qsTr("视频"),
                    value: Wall.Videos
                }
            ]
            value: Wall.filter
            onChosen: kind => Wall.filter = kind
        }
        Label {
            objectName: "counts"
            text: Wall.selectionText || Wall.countText
            color: Wall.selectedCount > 0 ? Theme.accent : Theme.secondaryText
            font.weight: Wall.selectedCount > 0 ? Font.DemiBold : Font.Normal
            wrapMode: Text.NoWrap
            elide: Text.ElideRight
            Layout.leftMargin: 8
            Layout.fillWidth: true
        }
        IconButton {
            objectName: "sortByDate"
            visible: Actions.canSortByDate
            text: qsTr("按时间排列")
            icon.name: "clock"
            onClicked: {
                Actions.sortByDate();
                header.released();
            }
        }
        Icon {
            visible: header.wide
            name: "tiles-small"
            color: Theme.secondaryText
            Layout.preferredWidth: 16
            Layout.preferredHeight: 16
        }
        Slider {
            objectName: "tileSize"
            visible: header.wide
            name: qsTr("照片的大小")
            from: Wall.smallestTile
            to: Wall.largestTile
            stepSize: 8
            value: Wall.tileSize
            Layout.preferredWidth: 120
            onMoved: Wall.tileSize = value
        }
        Icon {
            visible: header.wide
            name: "tiles-large"
            color: Theme.secondaryText
            Layout.preferredWidth: 16
            Layout.preferredHeight: 16
            Layout.rightMargin: 8
        }
        IconButton {
            objectName: "code"
            text: qsTr("二维码")
            icon.name: "scan"
            onClicked: code.open()

            CodePopup {
                id: code

                x: parent.width - width
                y: parent.height + 8
            }
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
