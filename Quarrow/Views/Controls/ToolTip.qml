import QtQuick
import QtQuick.Templates as T
import Tevrin

T.ToolTip {
    id: tip

    property bool shown: false

    x: parent ? Math.round((parent.width - implicitWidth) / 2) : 0
    y: -implicitHeight - 4
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    margins: 4
    padding: 4
    leftPadding: 8
    rightPadding: 8
    delay: 600
    visible: shown && text
    closePolicy: T.Popup.NoAutoClose

    contentItem: Label {
        text: tip.text
        color: Theme.background
        font.pixelSize: Theme.caption
        Accessible.ignored: true
    }
    background: Rectangle {
        radius: 4
        color: Theme.text
    }
}
