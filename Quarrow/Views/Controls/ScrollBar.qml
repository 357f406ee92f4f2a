import QtQuick
import QtQuick.Templates as T
import Tevrin

// Shows the position of a scrolling list.
T.ScrollBar {
    padding: 2
    implicitWidth: 10
    minimumSize: 0.1
    visible: size < 1
    Accessible.name: qsTr("滚动条")

    contentItem: Rectangle {
        implicitWidth: 6
        radius: 3
        color: Theme.edge
        opacity: 0.6
    }
}
