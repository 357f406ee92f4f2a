import QtQuick
import QtQuick.Templates as T
import Tevrin

T.AbstractButton {
    id: control

    implicitWidth: implicitContentWidth
    implicitHeight: implicitContentHeight + 4
    Accessible.role: Accessible.Link
    Accessible.name: text
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: Label {
        text: control.text
        color: control.down ? Theme.accentPress : Theme.accent
        font.underline: control.hovered
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }

    HoverHandler {
        cursorShape: Qt.PointingHandCursor
    }
    FocusRing {
        shown: control.visualFocus
        innerRadius: 4
    }
}
