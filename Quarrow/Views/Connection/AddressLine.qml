import QtQuick
import QtQuick.Templates as T
import Tevrin

// The URL in the code; a click copies it.
T.AbstractButton {
    id: line

    implicitWidth: 268
    implicitHeight: 24
    visible: Server.phoneURL
    text: said.running ? qsTr("已复制") : Server.phoneURL
    Accessible.role: Accessible.Button
    Accessible.name: said.running ? qsTr("已复制") : qsTr("复制地址 %1").arg(Server.phoneURL)
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()
    onClicked: {
        Shell.copyText(Server.phoneURL);
        said.restart();
    }

    contentItem: Label {
        text: line.text
        color: said.running ? Theme.success : line.hovered ? Theme.accent : Theme.secondaryText
        font.pixelSize: Theme.caption
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: 9
        wrapMode: Text.NoWrap
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }

    Timer {
        id: said

        interval: 1600
    }
    HoverHandler {
        cursorShape: Qt.PointingHandCursor
    }
    FocusRing {
        shown: line.visualFocus
        innerRadius: 4
        gap: 0
    }
    ToolTip {
        text: qsTr("点一下复制")
        shown: line.hovered && !said.running
    }
}
