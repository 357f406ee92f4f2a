import QtQuick
import QtTest
import Tevrin
import TevrinTest

TestCase {
    name: "Look"
    when: windowShown

    Component {
        id: view

        Window {
            readonly property alias look: look

            width: 1000
            height: 656

            QuickLook {
                id: look

                anchors.fill: parent
            }
        }
    }

    function init() {
        Stage.reset();
        Look.open = false;
    }
    function look(names, size) {
        Stage.hang(names, size ?? Qt.size(4032, 3024));
        const window = createTemporaryObject(view, null);
        window.show();
        window.requestActivate();
        tryVerify(() => window.active);
        window.look.open();
        Stage.awaitLook();
        return window;
    }

    function test_keysNavigateZoomAndClose() {
        const window = look(["a.jpg", "b.jpg", "c.mov"]);
        const zoom = findChild(window, "zoom");
        const walk = (key, name) => {
            Hands.press(window, key);
            Stage.awaitLook();
            compare(Look.name, name);
        };
        compare(Look.name, "a.jpg");
        walk(Qt.Key_Left, "a.jpg");
        walk(Qt.Key_Right, "b.jpg");
        Hands.press(window, Qt.Key_Plus);
        verify(!zoom.fitted);
        walk(Qt.Key_Right, "c.mov");
        compare(Look.kind, Look.Video);
        verify(Hands.speaks(window, "视频") && Hands.speaks(window, "播放"));
        walk(Qt.Key_Home, "a.jpg");
        verify(zoom.fitted, "the next photo is seen whole");
        Hands.press(window, Qt.Key_1);
        compare(zoom.percent, 100);
        Hands.press(window, Qt.Key_0);
        verify(zoom.fitted);
        Hands.press(window, Qt.Key_I);
        verify(window.look.detailed && Hands.speaks(window, "详细信息"));
        Hands.press(window, Qt.Key_Space);
        verify(!Look.open);
        compare(Look.kind, Look.Nothing);
        tryVerify(() => !window.look.visible);
    }

    function test_zoomingKeepsThePointUnderThePointerAndPanningStopsAtTheEdges() {
        const window = look(["a.jpg"], Qt.size(4000, 3000));
        const zoom = findChild(window, "zoom");
        compare(zoom.view, Qt.size(1000, 600));
        compare(zoom.frame, Qt.rect(100, 0, 800, 600));
        compare(zoom.percent, 20);
        zoom.zoomBy(2, Qt.point(300, 150)); // a quarter into the photo in both directions
        compare(zoom.frame, Qt.rect(-100, -150, 1600, 1200));
        zoom.pan(Qt.point(5000, -5000));
        compare(zoom.frame, Qt.rect(0, -600, 1600, 1200));
        zoom.pan(Qt.point(-10, 0)); // at once, since the bounds limited the previous movement
        compare(zoom.frame.x, -10);
        zoom.zoomBy(1000, Qt.point(0, 0));
        compare(zoom.percent, 800);
        zoom.zoomBy(0.0001, Qt.point(0, 0));
        verify(zoom.fitted);
        compare(zoom.frame, Qt.rect(100, 0, 800, 600));
        zoom.zoomBy(1.2, Qt.point(500, 300)); // as wide as 960: a gap on both sides
        compare(zoom.frame.x, 20);
        window.height = 356;
        tryCompare(zoom, "view", Qt.size(1000, 300));
        compare(zoom.percent, 24);
    }

    function test_aSmallPhotoIsCentredAtItsOwnSize() {
        const window = look(["a.jpg"], Qt.size(200, 100));
        const zoom = findChild(window, "zoom");
        compare(zoom.frame, Qt.rect(400, 250, 200, 100));
        compare(zoom.percent, 100);
        Hands.press(window, Qt.Key_1);
        compare(zoom.percent, 200); // a photo that fits is enlarged
        compare(zoom.frame, Qt.rect(300, 200, 400, 200));
    }

    function test_draggingPansALargePhotoAndTheWheelZooms() {
        const window = look(["a.jpg"], Qt.size(4000, 3000));
        const zoom = findChild(window, "zoom");
        const photo = findChild(window, "photo");
        const stage = photo.parent;
        mouseWheel(stage, 500, 300, 0, 480);
        compare(zoom.percent, 40);
        compare(zoom.frame, Qt.rect(-300, -300, 1600, 1200));
        mouseDrag(stage, 500, 300, 60, 40);
        compare(zoom.frame, Qt.rect(-240, -260, 1600, 1200));
    }

    function test_theViewerFollowsChangesOnTheWall() {
        const window = look(["a.jpg", "b.jpg"]);
        Wall.moveCurrent(1);
        Stage.awaitLook();
        compare(Look.name, "b.jpg");
        verify(Hands.speaks(window, "b.jpg"));
        Stage.hang([]);
        verify(!Look.open, "there is nothing left to look at");
    }

    function test_allControlsAreNamedAndReachableByKeyboard_data() {
        return [{tag: "photo", name: "a.jpg"}, {tag: "details", name: "a.jpg", detailed: true}, {tag: "video", name: "a.mov"}];
    }
    function test_allControlsAreNamedAndReachableByKeyboard(data) {
        const window = look(["first.jpg", data.name, "last.jpg"]);
        Hands.press(window, Qt.Key_Right);
        Stage.awaitLook();
        window.look.detailed = Boolean(data.detailed);
        compare(Hands.unnamed(window), []);
        compare(Hands.unreached(window), []);
        verify(Hands.speaks(window, data.name));
    }
}
