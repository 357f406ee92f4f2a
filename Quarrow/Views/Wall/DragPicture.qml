import QtQuick
import Tevrin

// The picture under the pointer while photos are dragged: a pile of the first ones, and their number.
Item {
    id: pile

    property int pixels: 0
    property var addresses: []

    signal finished

    // Starts the drag once the picture is ready, unless the button of `pointer` is released before.
    function take(pointer) {
        addresses = [...Wall.dragThumbnails(3)].reverse();
        grabToImage(result => {
            if (!pointer.pressed)
                return;
            Drag.imageSource = result.url;
            Drag.mimeData = Wall.dragData();
            Drag.active = true;
        });
    }

    x: -4 * width // off-screen: only grabbed as an image
    width: 112
    height: 112
    Accessible.ignored: true
    Drag.dragType: Drag.Automatic
    Drag.supportedActions: Qt.CopyAction
    Drag.hotSpot: Qt.point(24, 24)
    Drag.onDragFinished: {
        Drag.active = false;
        finished();
    }

    Repeater {
        model: pile.addresses

        // qmllint disable unqualified
        Rectangle {
            required property string modelData
            required property int index
            readonly property int behind: pile.addresses.length - 1 - index

            x: 4 + 6 * behind
            y: 4 + 6 * behind
            width: 88
            height: 88
            radius: 5
            color: Theme.surface
            border.width: 1
            border.color: Theme.line

            Icon {
                anchors.centerIn: parent
                visible: !modelData
                width: 32
                height: 32
                name: "video"
                color: Theme.accent
            }
            Image {
                anchors.fill: parent
                anchors.margins: 2
                visible: modelData
                source: modelData
                sourceSize: Qt.size(pile.pixels, pile.pixels)
            }
        }
        // qmllint enable unqualified
    }
    Rectangle {
        anchors.right: parent.right
        anchors.top: parent.top
        visible: Wall.selectedCount > 1
        width: Math.max(24, count.implicitWidth + 12)
        height: 24
        radius: 12
        color: Theme.accent

        Label {
            id: count

            anchors.centerIn: parent
            text: Wall.selectedCount
            color: Theme.textOnAccent
            font.pixelSize: Theme.caption
            font.weight: Font.DemiBold
        }
    }
}
