import QtQuick
import Tevrin

// A name over the lower edge of a picture, readable on any picture.
Item {
    id: caption

    property string text
    property real corner: 0

    Rectangle {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: 4
        height: words.height + 6
        radius: Math.max(4, caption.corner - 3)
        color: "#B3000000"

        Label {
            id: words

            x: 6
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width - 12
            text: caption.text
            color: "#FFFFFF"
            font.pixelSize: Theme.caption
            wrapMode: Text.NoWrap
            elide: Text.ElideMiddle
            horizontalAlignment: Text.AlignHCenter
            Accessible.ignored: true
        }
    }
}
