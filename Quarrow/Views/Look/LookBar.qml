import QtQuick
import QtQuick.Layouts
import Tevrin

// The name of the photo, and the actions on it.
Rectangle {
    id: bar

    required property Zoom zoom
    property bool detailed: false
    readonly property bool shows: Look.kind === Look.Picture
    readonly property bool wide: width >= 720

    signal togglesDetails
    signal closes

    implicitHeight: 56
    color: Theme.surface

    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: 1
        color: Theme.line
    }
    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 16
        anchors.rightMargin: 12
        spacing: 4

        ColumnLayout {
            spacing: 2
            Layout.fillWidth: true
            Layout.rightMargin: 8

            Label {
                text: Look.name
                font.weight: Font.DemiBold
                wrapMode: Text.NoWrap
                elide: Text.ElideMiddle
                Layout.fillWidth: true
            }
            Label {
                objectName: "line"
                text: Look.showsOriginal ? qsTr("原图 · %1").arg(Look.line) : Look.line
                secondary: true
                font.pixelSize: Theme.caption
                wrapMode: Text.NoWrap
                elide: Text.ElideRight
                visible: text
                Layout.fillWidth: true
            }
        }
        Label {
            text: qsTr("%1 / %2").arg(Wall.currentIndex + 1).arg(Wall.count)
            secondary: true
            font.pixelSize: Theme.caption
            visible: bar.wide && Wall.count > 0
            Layout.rightMargin: 8
        }
        LookButton {
            text: qsTr("缩小")
            icon.name: "zoom-out"
            visible: bar.wide
            enabled: bar.shows && !bar.zoom.fitted
            onClicked: bar.zoom.step(-1)
        }
        LookZoom {
            visible: bar.wide
            zoom: bar.zoom
            enabled: bar.shows
        }
        LookButton {
            text: qsTr("放大")
            icon.name: "zoom-in"
            visible: bar.wide
            enabled: bar.shows
            onClicked: bar.zoom.step(1)
        }
        LookButton {
            text: qsTr("向左旋转")
            icon.name: "rotate-left"
            enabled: bar.shows && !Look.showsOriginal
            Layout.leftMargin: 8
            onClicked: Actions.rotate(Actions.Anticlockwise)
        }
        LookButton {
            text: qsTr("向右旋转")
            icon.name: "rotate-right"
            enabled: bar.shows && !Look.showsOriginal
            onClicked: Actions.rotate(Actions.Clockwise)
        }
        LookButton {
            text: qsTr("用其他程序打开")
            icon.name: "open"
            onClicked: Actions.open()
        }
        LookButton {
            text: qsTr("移到回收站")
            icon.name: "trash"
            onClicked: Actions.trash()
        }
        LookButton {
            text: qsTr("详细信息")
            icon.name: "info"
            ink: bar.detailed ? Theme.accent : Theme.secondaryText
            Layout.leftMargin: 8
            Accessible.checkable: true
            Accessible.checked: bar.detailed
            onClicked: bar.togglesDetails()
        }
        LookButton {
            text: qsTr("关闭")
            icon.name: "close"
            onClicked: bar.closes()
        }
    }
}
