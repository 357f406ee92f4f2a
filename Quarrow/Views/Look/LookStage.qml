import QtQuick
import Tevrin

// The photo itself, or a placeholder if it cannot be shown.
FocusScope {
    id: stage

    readonly property alias zoom: zoom
    readonly property bool shows: Look.kind === Look.Picture
    property bool ringed: false // whether to show the focus ring

    function reset() {
        zoom.reset();
    }

    function toggle() {
        zoom.toggle(Qt.point(width / 2, height / 2));
    }

    clip: true

    Zoom {
        id: zoom

        objectName: "zoom"
        view: Qt.size(stage.width, stage.height)
        photo: Look.pixels
        pixelRatio: stage.Screen.devicePixelRatio
        onShownPixelsChanged: Look.shownPixels = shownPixels
    }
    Connections {
        function onFileChanged() {
            zoom.reset();
        }

        target: Look
    }
    Rectangle { // makes edges visible if they are transparent or paper-coloured
        x: photo.x
        y: photo.y
        width: photo.width
        height: photo.height
        visible: stage.shows
        color: Theme.track
    }
    Photo {
        id: photo

        objectName: "photo"
        image: Look.picture
        x: zoom.frame.x
        y: zoom.frame.y
        width: zoom.frame.width
        height: zoom.frame.height
        visible: stage.shows
        focus: true
        activeFocusOnTab: true
        Accessible.role: Accessible.Graphic
        Accessible.name: Look.name
        Accessible.description: qsTr("%1 · 显示比例 %2%").arg(Look.line).arg(zoom.percent)
        Accessible.focusable: true

        Behavior on x {
            enabled: zoom.glides && !Theme.reducedMotion

            Glide {}
        }
        Behavior on y {
            enabled: zoom.glides && !Theme.reducedMotion

            Glide {}
        }
        Behavior on width {
            enabled: zoom.glides && !Theme.reducedMotion

            Glide {}
        }
        Behavior on height {
            enabled: zoom.glides && !Theme.reducedMotion

            Glide {}
        }
    }
    LookPointerInput {
        anchors.fill: parent
        enabled: stage.shows
        zoom: zoom
    }
    LookPlaceholder {
        anchors.centerIn: parent
        width: Math.min(360, parent.width - 128)
        visible: Look.kind > Look.Picture
    }
    Label { // only if loading takes a while
        anchors.centerIn: parent
        text: qsTr("正在打开…")
        secondary: true
        visible: Look.kind === Look.Loading

        SequentialAnimation on opacity {
            running: Look.kind === Look.Loading

            PropertyAction {
                value: 0
            }
            PauseAnimation {
                duration: 400
            }
            PropertyAction {
                value: 1
            }
        }
    }
    LookStepButton {
        anchors.left: parent.left
        text: qsTr("上一张")
        icon.name: "back"
        enabled: Wall.currentIndex > 0
        onClicked: Wall.moveCurrent(-1)
    }
    LookStepButton {
        anchors.right: parent.right
        objectName: "next"
        text: qsTr("下一张")
        icon.name: "next"
        enabled: Wall.currentIndex < Wall.count - 1
        onClicked: Wall.moveCurrent(1)
    }
    FocusRing {
        anchors.margins: 2
        shown: stage.ringed && photo.activeFocus && photo.visible
        innerRadius: 0
    }

    component Glide: NumberAnimation {
        duration: Theme.motion
        easing.type: Easing.OutCubic
    }
}
