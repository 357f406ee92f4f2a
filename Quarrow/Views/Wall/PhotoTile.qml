import QtQuick
import Tevrin

// One photo of the wall. The grid handles all clicks.
Item {
    id: tile

    required property int index
    required property string name
    required property string sizeText
    required property string spoken
    required property string thumbnail
    required property bool isVideo
    required property bool isOversized
    required property bool isRecent
    required property bool isSelected
    required property WallLayout layout

    readonly property bool current: index === Wall.currentIndex
    readonly property bool hovered: index === layout.hovered
    readonly property bool pictured: picture.status === Image.Ready
    readonly property real corner: Math.round(face.width / 24)

    width: layout.cell
    height: layout.cellHeight
    focus: current
    Accessible.role: Accessible.ListItem
    Accessible.name: spoken
    Accessible.focusable: true
    Accessible.selectable: true
    Accessible.selected: isSelected
    Accessible.onPressAction: Wall.click(index, 0)

    Item {
        id: face

        x: tile.layout.gap / 2
        y: tile.layout.gap / 2
        width: tile.layout.side
        height: width

        Rectangle {
            anchors.fill: parent
            visible: !tile.pictured
            radius: tile.corner
            color: tile.thumbnail && picture.status !== Image.Error ? Theme.track : Theme.surface
            border.width: tile.thumbnail && picture.status !== Image.Error ? 0 : 1
            border.color: Theme.line
        }
        Image {
            id: picture

            anchors.fill: parent
            asynchronous: true
            source: tile.thumbnail
            sourceSize.width: tile.layout.pixels
            sourceSize.height: tile.layout.pixels
            smooth: sourceSize.width !== Math.round(width * Screen.devicePixelRatio)
        }
        // qmllint disable unqualified
        // What cannot be pictured: a video, or a picture that nobody could read.
        Loader {
            anchors.fill: parent
            active: !tile.thumbnail || picture.status === Image.Error
            sourceComponent: TilePlaceholder {
                name: tile.layout.labelled ? "" : tile.name
                sizeText: tile.sizeText
                icon: tile.isVideo ? "video" : "image-off"
                detail: tile.isOversized ? qsTr("尺寸过大，不显示") : ""
            }
        }
        Loader {
            anchors.fill: parent
            active: tile.pictured && !tile.layout.labelled && (tile.hovered || tile.current && tile.isSelected)
            sourceComponent: TileCaption {
                text: tile.name
                corner: tile.corner
            }
        }
        Rectangle {
            anchors.fill: parent
            visible: tile.isSelected
            radius: tile.corner
            color: Theme.accent
            opacity: 0.16
        }
        Rectangle {
            anchors.fill: parent
            anchors.margins: -3
            visible: tile.isSelected || tile.isRecent
            radius: tile.corner + 3
            color: "transparent"
            border.width: 3
            border.color: Theme.accent
        }
        Loader {
            anchors.right: parent.right
            anchors.top: parent.top
            anchors.margins: 6
            active: tile.isSelected
            sourceComponent: Rectangle {
                implicitWidth: 22
                implicitHeight: 22
                radius: 11
                color: Theme.accent
                border.width: 1.5
                border.color: Theme.textOnAccent

                Icon {
                    anchors.centerIn: parent
                    width: 14
                    height: 14
                    name: "check"
                    color: Theme.textOnAccent
                }
            }
        }
        // The focus indicator.
        Loader {
            anchors.fill: parent
            active: tile.current && tile.layout.keyboardShown
            sourceComponent: FocusRing {
                shown: true
                innerRadius: tile.corner
                gap: tile.isSelected ? -5 : 1
                border.color: tile.isSelected ? Theme.textOnAccent : Theme.accent
            }
        }
        // qmllint enable unqualified
        Label {
            x: 0
            y: face.height + 5
            width: face.width
            visible: tile.layout.labelled && !(tile.current && tile.layout.renaming)
            text: tile.name
            color: tile.isSelected ? Theme.accent : Theme.text
            font.pixelSize: Theme.caption
            wrapMode: Text.NoWrap
            elide: Text.ElideMiddle
            horizontalAlignment: Text.AlignHCenter
            Accessible.ignored: true
        }
    }
}
