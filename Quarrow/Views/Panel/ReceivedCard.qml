import QtQuick
import QtQuick.Layouts
import Tevrin

// The last arrival and the uploads in progress.
Card {
    visible: Server.lastNote || Arrivals.busy

    ProgressLine {}
    LastNote {}
    Label {
        visible: Shell.receivedCount > 1
        text: qsTr("这次打开以来共收到 %1 个文件").arg(Shell.receivedCount)
        secondary: true
        font.pixelSize: Theme.caption
        Layout.leftMargin: 26
        Layout.topMargin: -8
    }
}
