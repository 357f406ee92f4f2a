import QtQuick
import QtQuick.Layouts
import Tevrin

// At the bottom of the wall: the progress of actions on many files, and the last action with an undo button.
// It stays while the pointer or focus is on it.
Rectangle {
    id: bar

    readonly property bool works: Actions.jobs.running && Actions.jobs.total > 1 && longEnough
    readonly property bool says: Actions.note !== ""
    readonly property bool held: pointer.hovered || focused
    readonly property string progress: Actions.jobs.stopping ? qsTr("正在停止…") : qsTr("正在处理 %1 / %2").arg(Math.min(Actions.jobs.done + 1, Actions.jobs.total)).arg(Actions.jobs.total)
    readonly property bool focused: undo.activeFocus || close.activeFocus || stop.activeFocus
    property bool longEnough: false
    property string latest // the text while it fades out

    signal released // by the keyboard, whose button has disappeared

    objectName: "undoBar"
    implicitWidth: row.implicitWidth + 24
    implicitHeight: 44
    radius: Theme.radiusCard
    color: Theme.dark ? "#2C302E" : "#262827"
    border.width: Theme.dark ? 1 : 0
    border.color: "#434845"
    visible: opacity > 0
    opacity: works || says ? 1 : 0
    enabled: works || says
    onHeldChanged: Actions.noteHeld = held
    Accessible.role: Accessible.AlertMessage
    Accessible.name: words.text

    Behavior on opacity {
        enabled: !Theme.reducedMotion

        NumberAnimation {
            duration: Theme.motion
            easing.type: Easing.OutCubic
        }
    }
    Binding {
        target: bar
        property: "latest"
        value: bar.works ? bar.progress : Actions.note
        when: bar.works || bar.says
        restoreMode: Binding.RestoreNone
    }
    Timer {
        interval: 400
        running: Actions.jobs.running
        onTriggered: bar.longEnough = true
        onRunningChanged: bar.longEnough = false
    }
    HoverHandler {
        id: pointer
    }
    RowLayout {
        id: row

        anchors.fill: parent
        anchors.leftMargin: 16
        anchors.rightMargin: 8
        spacing: 8

        Label {
            id: words

            text: bar.latest
            color: "#F2F2F0"
            wrapMode: Text.NoWrap
            elide: Text.ElideMiddle
            Layout.fillWidth: true
            Layout.maximumWidth: 420
            Accessible.ignored: true
        }
        BarButton {
            id: stop

            objectName: "stop"
            visible: bar.works
            enabled: !Actions.jobs.stopping
            text: qsTr("停止")
            onClicked: {
                Actions.jobs.stop();
                bar.released();
            }
        }
        BarButton {
            id: undo

            objectName: "undo"
            visible: !bar.works && Actions.noteCanBeUndone
            text: qsTr("撤销")
            onClicked: {
                Actions.undo();
                bar.released();
            }
        }
        BarButton {
            id: close

            objectName: "close"
            visible: !bar.works
            text: qsTr("关闭")
            icon.name: "close"
            onClicked: {
                Actions.dismissNote();
                bar.released();
            }
        }
    }
}
