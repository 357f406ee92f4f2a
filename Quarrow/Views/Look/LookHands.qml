import QtQuick
import Tevrin

// Mouse, touch pad and fingers on the photo.
Item {
    id: hands

    required property Zoom zoom

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
    // Two fingers on a touch pad move a photo that is larger than the view; everything else zooms.
    WheelHandler {
        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
        onWheel: event => {
            if (event.hasPixelDelta && !(event.modifiers & Qt.ControlModifier) && !hands.zoom.fitted)
                hands.zoom.pan(Qt.point(event.pixelDelta.x, event.pixelDelta.y));
            else
                hands.zoom.zoomBy(Math.pow(2, event.angleDelta.y / 480), Qt.point(event.x, event.y));
        }
    }
}
