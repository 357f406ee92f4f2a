import QtQuick
import QtQuick.Templates as T
import Tevrin

// The photos as a grid of squares, with pointer and keyboard input.
FocusScope {
    id: wall

    readonly property alias layout: plan
    readonly property bool renaming: box.visible
    property int bottomSpace: 0

    // The user opened the focused photo.
    signal lookedAt
    // Requests the menu of the selected photos: at `tile`, or under the pointer without one.
    signal menuWanted(Item tile)

    function scrollBy(distance) {
        const least = grid.originY - grid.topMargin;
        const most = grid.originY + grid.contentHeight + grid.bottomMargin - grid.height;
        grid.contentY = Math.max(least, Math.min(Math.max(least, most), grid.contentY + distance));
    }
    // Includes the margins above the first and below the last row.
    function reveal() {
        const place = Wall.currentIndex;
        if (place < 0)
            return;
        grid.positionViewAtIndex(place, GridView.Contain);
        if (place < plan.columns)
            scrollBy(-grid.height);
        else if (Math.floor(place / plan.columns) === Math.floor((Wall.count - 1) / plan.columns))
            scrollBy(grid.height);
    }
    // Starts renaming the focused photo on its tile.
    function rename() {
        if (Wall.currentIndex < 0)
            return;
        Wall.click(Wall.currentIndex, 0);
        reveal();
        box.start();
    }
    function focusGrid() {
        grid.forceActiveFocus(Qt.MouseFocusReason);
    }

    clip: true
    Component.onCompleted: plan.pixels = rest.wanted

    WallLayout {
        id: plan

        width: wall.width
        height: wall.height
        top: grid.contentY - grid.originY
        renaming: box.visible
    }
    WallKeys {
        id: keys

        layout: plan
        onLookedAt: wall.lookedAt()
        onMenuWanted: wall.menuWanted(grid.itemAtIndex(Wall.currentIndex))
    }
    Timer {
        id: rest

        readonly property int wanted: Math.round(plan.side * Screen.devicePixelRatio)

        interval: 120
        onWantedChanged: restart()
        onTriggered: plan.pixels = wanted
    }
    // Scrolls to the focused photo if another one got focus, but not if it only moved because others arrived.
    Connections {
        property url followed

        target: Wall

        function onCurrentChanged() {
            if (followed !== Wall.currentFile)
                wall.reveal();
            followed = Wall.currentFile;
        }
    }
    GridView {
        id: grid

        objectName: "grid"
        x: plan.margin
        width: plan.columns * plan.cell
        height: wall.height
        topMargin: plan.gap / 2
        bottomMargin: plan.gap / 2 + wall.bottomSpace
        focus: true
        activeFocusOnTab: true
        keyNavigationEnabled: false
        boundsBehavior: Flickable.StopAtBounds
        cacheBuffer: wall.height
        cellWidth: plan.cell
        cellHeight: plan.cellHeight
        model: Wall.model
        Accessible.role: Accessible.List
        Accessible.name: qsTr("照片墙，%1").arg(Wall.countText)
        Keys.onPressed: event => {
            plan.keyboardShown = true;
            event.accepted = keys.press(event);
        }

        // qmllint disable unqualified
        delegate: PhotoTile {
            layout: plan
        }
        footer: Label {
            width: grid.width
            height: text ? 48 : 0
            visible: text
            text: Wall.limitText
            secondary: true
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
        }
        // qmllint enable unqualified
        T.ScrollBar.vertical: bar
    }
    PhotoPointer {
        anchors.fill: parent
        layout: plan
        onKeyboardWanted: wall.focusGrid()
        onMenuWanted: wall.menuWanted(null)
        onScrolled: distance => wall.scrollBy(distance)
    }
    RenameBox {
        id: box

        readonly property point corner: plan.cornerOf(Math.max(0, Wall.currentIndex))

        x: Math.max(4, Math.min(wall.width - width - 4, corner.x + (plan.cell - width) / 2))
        y: corner.y + plan.cell - (plan.labelled ? 0 : 40)
        width: Math.max(200, plan.cell - plan.gap)
        onClosed: wall.focusGrid()
    }
    T.ScrollBar {
        id: bar

        parent: wall
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        padding: 1
        implicitWidth: 9
        minimumSize: 0.06
        visible: size < 1
        Accessible.name: qsTr("滚动条")

        contentItem: Rectangle {
            implicitWidth: 7
            radius: 3.5
            color: Theme.edge
            border.width: 1
            border.color: Theme.background
            opacity: bar.hovered || bar.pressed ? 1 : 0.7
        }
    }
}
