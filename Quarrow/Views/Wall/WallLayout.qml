import QtQuick
import Tevrin

// The positions of photos on a wall of this size, shared by all parts of the wall. Points are in the
// coordinates of the wall.
QtObject {
    id: layout

    property real width: 0
    property real height: 0
    property real top: 0 // scroll position
    readonly property int gap: 8
    readonly property int columns: Math.max(2, Math.floor((width - gap) / (Wall.tileSize + gap)))
    readonly property int cell: Math.floor((width - gap) / columns)
    readonly property int side: cell - gap // of a tile
    readonly property bool labelled: side >= 200 // large tiles have their names below
    readonly property int cellHeight: cell + (labelled ? 24 : 0)
    readonly property int rows: Math.floor(height / cellHeight)
    readonly property real margin: Math.floor((width - columns * cell) / 2)
    // The side of a picture in device pixels, updated when the layout is stable.
    property int pixels: 0
    property int hovered: -1
    property bool keyboardShown: false // after the first use of the keyboard
    property bool renaming: false

    // Returns the photo at a point; -1 between photos.
    function placeAt(x, y) {
        const column = Math.floor((x - margin) / cell);
        const row = Math.floor((y + top) / cellHeight);
        const inX = x - margin - column * cell;
        const inY = y + top - row * cellHeight;
        const place = row * columns + column;
        const onTile = inX >= gap / 2 && inX < cell - gap / 2 && inY >= gap / 2 && inY < cellHeight - gap / 2;
        return onTile && row >= 0 && column >= 0 && column < columns && place < Wall.count ? place : -1;
    }
    // Returns the gap nearest to a point, as the photo after it.
    function gapAt(x, y) {
        const row = Math.max(0, Math.floor((y + top) / cellHeight));
        const column = Math.max(0, Math.min(columns, Math.round((x - margin) / cell)));
        return Math.min(row * columns + column, Wall.count);
    }
    // Returns the upper left corner of a photo's cell.
    function cornerOf(place) {
        return Qt.point(margin + (place % columns) * cell, Math.floor(place / columns) * cellHeight - top);
    }
}
