import QtQuick
import QtQuick.Layouts
import Tevrin

// The photo wall, or instructions while it has no photos.
AppWindow {
    id: window

    readonly property bool filled: Wall.state === Wall.Filled
    readonly property bool empty: Wall.state === Wall.Empty

    title: qsTr("Tevrin")
    width: 1080
    height: 720
    minimumWidth: 380
    minimumHeight: 360
    onFilledChanged: {
        if (filled && !look.opened)
            grid.focusGrid();
    }

    Shortcut {
        enabled: !look.opened && !grid.renaming && !actions.sheetOpen
        sequences: ["Ctrl+Z"]
        onActivated: Actions.undo()
    }
    Shortcut {
        enabled: !look.opened && !grid.renaming && !actions.sheetOpen
        sequences: ["Ctrl+V"]
        onActivated: Wall.paste()
    }
    ColumnLayout {
        anchors.fill: parent
        spacing: 0
        enabled: !look.opened

        WallHeader {
            visible: !window.empty
            Layout.fillWidth: true
            onReleased: grid.focusGrid()
        }
        ErrorNotice {
            visible: Server.error && !window.empty && Wall.state !== Wall.Missing
            Layout.fillWidth: true
            Layout.margins: 8
            Layout.bottomMargin: 0
        }
        FirewallNotice {
            visible: Server.firewallAdvice && Shell.receivedCount === 0 && window.filled
            Layout.fillWidth: true
            Layout.margins: 8
            Layout.bottomMargin: 0
        }
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true

            PhotoGrid {
                id: grid

                anchors.fill: parent
                visible: window.filled
                focus: window.filled
                bottomSpace: importing.visible || Actions.note ? 64 : 0
                Keys.forwardTo: [actions]
                onLookedAt: look.open()
                onMenuWanted: tile => tile ? actions.popupAt(tile) : actions.popup()
            }
            EmptyWall {
                anchors.fill: parent
                visible: window.empty
                focus: window.empty
            }
            WallMessages {
                anchors.fill: parent
            }
            WallDrop {
                anchors.fill: parent
                clip: true
                layout: grid.layout
                onScrolled: distance => grid.scrollBy(distance)
            }
            ImportBar {
                id: importing

                anchors.horizontalCenter: parent.horizontalCenter
                anchors.bottom: parent.bottom
                anchors.bottomMargin: Actions.note ? 72 : 16
            }
            ActionsLayer {
                id: actions

                anchors.fill: parent
                onRenameAsked: grid.rename()
                onReleased: grid.focusGrid()
            }
        }
        WallFooter {
            alone: window.empty
            Layout.fillWidth: true
        }
    }
    QuickLook {
        id: look

        anchors.fill: parent
        onClosed: grid.focusGrid()
    }
}
