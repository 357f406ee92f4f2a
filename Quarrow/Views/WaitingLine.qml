import QtQuick
import QtQuick.Layouts
import Tevrin

// How many received photos wait for their processing.
Words {
    text: Server.waitingNote
    visible: Server.waitingNote
    quiet: true
    font.pixelSize: Theme.caption
    Layout.fillWidth: true
}
