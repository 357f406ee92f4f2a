import QtQuick
import Tevrin

// Mouse, touch pad and touch input on the photo.
Item {
    id: hands

    required property Zoom zoom

    function moves(wheel) {
        return !zoom.fitted && !(wheel.modifiers & Qt.ControlModifier);
    }

    function zoomBy(wheel) {
        zoom.zoomBy(Math.pow(2, wheel.angleDelta.y / 480), Qt.point(wheel.x, wheel.y));
    }

    HoverHandler {
        cursorShape: hands.zoom.fitted ? Qt.ArrowCursor : drag.active ? Qt.ClosedHandCursor : Qt.OpenHandCursor
    }
    TapHandler {
        onDoubleTapped: eventPoint => hands.zoom.toggle(eventPoint.position)
    }
    DragHandler {
        id: drag

        property point last

        target: null
        enabled: !hands.zoom.fitted
        onActiveChanged: last = Qt.point(0, 0)
        onActiveTranslationChanged: {
            hands.zoom.pan(Qt.point(activeTranslation.x - last.x, activeTranslation.y - last.y));
            last = Qt.point(activeTranslation.x, activeTranslation.y);
        }
    }
    PinchHandler {
        id: pinch

        property real last: 1

        target: null
        onActiveChanged: last = 1
        onActiveScaleChanged: {
            hands.zoom.zoomBy(activeScale / last, centroid.position);
            last = activeScale;
        }
    }
    WheelHandler {
        acceptedDevices: PointerDevice.Mouse
        onWheel: event => hands.zoomBy(event)
    }
    // Two fingers on a touch pad move a photo that is larger than the view, in both directions.
    WheelHandler {
        acceptedDevices: PointerDevice.TouchPad
        blocking: false
        onWheel: event => hands.moves(event) ? hands.zoom.pan(Qt.point(0, event.pixelDelta.y)) : hands.zoomBy(event)
    }
    WheelHandler {
        acceptedDevices: PointerDevice.TouchPad
        orientation: Qt.Horizontal
        blocking: false
        onWheel: event => {
            if (hands.moves(event))
                hands.zoom.pan(Qt.point(event.pixelDelta.x, 0));
        }
    }
}
