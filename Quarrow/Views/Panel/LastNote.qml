import QtQuick
import QtQuick.Layouts
import Tevrin

// The line about the last received file.
RowLayout {
    visible: Server.lastNote
    spacing: 8

    Icon {
        name: "check"
        color: Theme.success
        Layout.preferredWidth: 18
        Layout.preferredHeight: 18
        Layout.alignment: Qt.AlignTop
    }
    Label {
        text: Server.lastNote
        secondary: true
        maximumLineCount: 3
        elide: Text.ElideRight
        Layout.fillWidth: true
    }
}
