import QtQuick
import QtQuick.Layouts
import Tevrin

// The number of received photos that wait for their processing.
Label {
    text: Server.waitingNote
    visible: Server.waitingNote
    secondary: true
    font.pixelSize: Theme.caption
    Layout.fillWidth: true
}
