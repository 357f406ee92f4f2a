import QtQuick
import Tevrin

// Handles drops on the wall: its own photos are moved, other files are imported. Shows the effect while
// something is dragged over the wall.
DropArea {
    id: drop

    required property WallLayout layout
    property bool own: false
    property int place: -1 // the photo before which its own photos would go

    signal scrolled(real distance)

    function follow(drag) {
        place = own ? layout.gapAt(drag.x, drag.y) : -1;
        edge.beyond = drag.y < 32 ? drag.y - 32 : Math.max(0, drag.y - height + 32);
    }

    onEntered: drag => {
        own = drag.formats.includes("application/x-tevrin-photos");
        drag.accepted = own || drag.hasUrls;
        follow(drag);
    }
    onPositionChanged: drag => follow(drag)
    onDropped: drag => {
        if (own)
            Wall.moveSelectionTo(layout.gapAt(drag.x, drag.y));
        else
            Wall.importFiles(drag.urls);
        drag.accept(Qt.CopyAction);
    }

    // Scrolls the wall during a drag near its edges.
    Timer {
        id: edge

        property real beyond: 0

        interval: 16
        repeat: true
        running: drop.containsDrag && drop.own && beyond !== 0
        onTriggered: drop.scrolled(beyond / 2)
    }
    Rectangle {
        // After the last photo of a full row there is no next one.
        readonly property bool behind: drop.place > 0 && drop.place === Wall.count && drop.place % drop.layout.columns === 0
        readonly property point corner: drop.layout.cornerOf(Math.max(0, drop.place - (behind ? 1 : 0)))

        objectName: "insertionMark"
        visible: drop.containsDrag && drop.own
        x: Math.round(corner.x + (behind ? drop.layout.cell : 0) - width / 2)
        y: corner.y + drop.layout.gap / 2
        width: 4
        height: drop.layout.side
        radius: 2
        color: Theme.accent
    }
    Rectangle {
        objectName: "dropHighlight"
        anchors.fill: parent
        anchors.margins: 6
        visible: drop.containsDrag && !drop.own
        radius: Theme.radiusCard
        color: Qt.rgba(Theme.accent.r, Theme.accent.g, Theme.accent.b, 0.1)
        border.width: 3
        border.color: Theme.accent

        Rectangle {
            anchors.centerIn: parent
            width: words.implicitWidth + 48
            height: 44
            radius: 22
            color: Theme.accent

            Label {
                id: words

                anchors.centerIn: parent
                text: qsTr("松开，复制到保存目录")
                color: Theme.textOnAccent
                font.weight: Font.DemiBold
            }
        }
    }
}
