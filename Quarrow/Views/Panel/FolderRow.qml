import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tevrin

// The save folder; a click opens it.
T.AbstractButton {
    id: row

    objectName: "folderRow"
    implicitWidth: 268
    implicitHeight: 32
    Accessible.role: Accessible.Button
    Accessible.name: qsTr("打开保存目录 %1").arg(Phrases.folder(Server.saveFolder))
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()
    onClicked: Shell.openSaveFolder()

    contentItem: RowLayout {
        spacing: 8

        Icon {
            name: "folder"
            color: Theme.secondaryText
            Layout.preferredWidth: 18
            Layout.preferredHeight: 18
        }
        Label {
            text: Phrases.folder(Server.saveFolder)
            color: row.hovered ? Theme.accent : Theme.text
            wrapMode: Text.NoWrap
            elide: Text.ElideMiddle
            Layout.fillWidth: true
            Accessible.ignored: true
        }
        Icon {
            name: "open"
            color: row.hovered ? Theme.accent : Theme.secondaryText
            Layout.preferredWidth: 16
            Layout.preferredHeight: 16
        }
    }

    HoverHandler {
        cursorShape: Qt.PointingHandCursor
    }
    FocusRing {
        shown: row.visualFocus
        innerRadius: 4
    }
    ToolTip {
        text: Server.saveFolder
        shown: row.hovered
    }
}
