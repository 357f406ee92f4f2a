import QtQuick
import Tevrin

// Copies `copied` and confirms it for a moment.
IconButton {
    id: control

    property string copied
    property string what

    text: said.running ? qsTr("已复制") : qsTr("复制%1").arg(what)
    icon.name: said.running ? "check" : "copy"
    ink: said.running ? Theme.success : Theme.secondaryText
    enabled: copied
    onClicked: {
        Shell.copyText(copied);
        said.restart();
    }

    Timer {
        id: said

        interval: 1600
    }
}
