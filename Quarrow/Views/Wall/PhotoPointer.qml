import QtQuick
import Tevrin

// Pointer input on the wall: selects, draws a rubber band, and drags photos.
MouseArea {
    id: pointer

    enum Doing { Nothing, Pressing, Banding, Dragging }

    required property WallLayout layout
    property int doing: PhotoPointer.Nothing
    property int held: -1
    property bool deselects: false // whether a mere click deselects the others
    property point began // on the wall; for a rubber band in its content

    // A press requests focus.
    signal keyboardWanted
    signal menuWanted
    signal scrolled(real distance)

    function bandTo(x, y) {
        const at = Qt.point(x, y + layout.top);
        band.x = Math.min(began.x, at.x);
        band.y = Math.min(began.y, at.y) - layout.top;
        band.width = Math.abs(at.x - began.x);
        band.height = Math.abs(at.y - began.y);
        Wall.stretchBand(Qt.rect(band.x - layout.margin, band.y + layout.top, band.width + 1, band.height + 1), Qt.size(layout.cell, layout.cellHeight), layout.columns, layout.gap);
    }
    function begin(mouse) {
        began = Qt.point(mouse.x, mouse.y);
        held = layout.placeAt(mouse.x, mouse.y);
        deselects = false;
        if (held < 0) {
            doing = PhotoPointer.Banding;
            began.y += layout.top;
            Wall.beginBand(mouse.modifiers);
            return;
        }
        doing = PhotoPointer.Pressing;
        const plain = !(mouse.modifiers & (Qt.ControlModifier | Qt.ShiftModifier));
        deselects = plain && Wall.isSelected(held);
        if (deselects)
            Wall.grab(held);
        else
            Wall.click(held, mouse.modifiers);
    }
    function end() {
        doing = PhotoPointer.Nothing;
        band.width = 0;
        held = -1;
    }
    function farFrom(mouse) {
        return Math.abs(mouse.x - began.x) + Math.abs(mouse.y - began.y) > Qt.styleHints.startDragDistance;
    }

    acceptedButtons: Qt.LeftButton | Qt.RightButton
    hoverEnabled: true
    preventStealing: true
    Accessible.ignored: true
    onPressed: mouse => {
        layout.keyboardShown = false;
        keyboardWanted();
        if (mouse.button === Qt.LeftButton)
            return begin(mouse);
        const place = layout.placeAt(mouse.x, mouse.y);
        if (place >= 0) {
            Wall.grab(place);
            menuWanted();
        } else {
            Wall.selectNone();
        }
    }
    onPositionChanged: mouse => {
        layout.hovered = doing === PhotoPointer.Nothing ? layout.placeAt(mouse.x, mouse.y) : -1;
        if (doing === PhotoPointer.Banding)
            bandTo(mouse.x, mouse.y);
        else if (doing === PhotoPointer.Pressing && farFrom(mouse) && Wall.isSelected(held)) {
            doing = PhotoPointer.Dragging;
            picture.take(pointer);
        }
    }
    onReleased: {
        if (doing === PhotoPointer.Pressing && deselects)
            Wall.click(held, Qt.NoModifier);
        end();
    }
    onCanceled: end()
    onExited: layout.hovered = -1
    onWheel: wheel => {
        wheel.accepted = wheel.modifiers & Qt.ControlModifier; // otherwise the wall scrolls
        if (wheel.accepted)
            Wall.tileSize += wheel.angleDelta.y / 5;
    }
    onDoubleClicked: mouse => {
        if (mouse.button === Qt.LeftButton && layout.placeAt(mouse.x, mouse.y) >= 0)
            Actions.open();
    }

    // Scrolls the wall while the rubber band is beyond its edges.
    Timer {
        readonly property real beyond: pointer.mouseY < 24 ? pointer.mouseY - 24 : Math.max(0, pointer.mouseY - pointer.height + 24)

        interval: 16
        repeat: true
        running: pointer.doing === PhotoPointer.Banding && beyond !== 0
        onTriggered: {
            pointer.scrolled(Math.max(-30, Math.min(30, beyond / 2)));
            pointer.bandTo(pointer.mouseX, pointer.mouseY);
        }
    }
    Rectangle {
        id: band

        visible: pointer.doing === PhotoPointer.Banding && width > 2
        radius: 2
        color: Qt.rgba(Theme.accent.r, Theme.accent.g, Theme.accent.b, 0.14)
        border.width: 1
        border.color: Theme.accent
    }
    DragPicture {
        id: picture

        pixels: pointer.layout.pixels
        onFinished: pointer.end()
    }
}
