import QtQuick
import Tevrin

// The focused photo of the wall, over everything else in the window. Place it last in the window's content
// and let it fill that; disable what it covers while it is `opened`. It takes focus.
FocusScope {
    id: look

    readonly property bool opened: Look.open
    property bool detailed: false

    signal closed

    function open() {
        Wall.moveCurrent(0);
        stage.reset();
        Look.open = true;
        stage.forceActiveFocus();
    }

    function close() {
        Look.open = false;
        closed();
    }

    objectName: "quickLook"
    visible: opened || opacity > 0
    enabled: opened
    opacity: opened ? 1 : 0
    Accessible.role: Accessible.Dialog
    Accessible.name: qsTr("快速查看")
    Accessible.ignored: !opened

    Binding {
        target: Look
        property: "file"
        value: Wall.currentFile
    }
    Connections { // the last photo is gone
        function onCurrentChanged() {
            if (look.opened && Wall.currentIndex < 0)
                look.close();
        }

        target: Wall
    }
    Behavior on opacity {
        enabled: !Theme.reducedMotion

        NumberAnimation {
            duration: Theme.motion
            easing.type: Easing.OutCubic
        }
    }

    Keys.onPressed: event => event.accepted = keys.press(event)

    LookKeys {
        id: keys

        stage: stage
        onCloses: look.close()
        onTogglesDetails: look.detailed = !look.detailed
    }
    Rectangle {
        anchors.fill: parent
        color: Theme.background

        MouseArea { // blocks clicks on what it covers
            anchors.fill: parent
            hoverEnabled: true
            onWheel: wheel => wheel.accepted = true
        }
    }
    LookStage {
        id: stage

        focus: true
        anchors.left: parent.left
        anchors.right: look.width < 640 ? parent.right : side.left
        anchors.top: bar.bottom
        anchors.bottom: parent.bottom
    }
    LookSide {
        id: side

        anchors.top: bar.bottom
        anchors.bottom: parent.bottom
        x: look.width - width * drawn
        width: Math.min(300, look.width - 64)
        visible: drawn > 0
        enabled: look.detailed

        property real drawn: look.detailed ? 1 : 0

        Behavior on drawn {
            enabled: !Theme.reducedMotion

            NumberAnimation {
                duration: Theme.motion
                easing.type: Easing.OutCubic
            }
        }
    }
    UndoBar { // the wall's own bar is covered
        objectName: "lookUndoBar"
        anchors.horizontalCenter: stage.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 16
        width: Math.min(implicitWidth, stage.width - 32)
        onReleased: stage.forceActiveFocus()
    }
    LookBar {
        id: bar

        anchors.left: parent.left
        anchors.right: parent.right
        zoom: stage.zoom
        detailed: look.detailed
        onTogglesDetails: look.detailed = !look.detailed
        onCloses: look.close()
    }
}
