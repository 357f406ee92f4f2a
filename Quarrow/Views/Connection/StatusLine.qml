import QtQuick
import QtQuick.Layouts
import Tevrin

// A dot and a sentence, and a link to the help if something is wrong.
Item {
    id: line

    property bool offersHelp: true

    implicitWidth: 16 + words.implicitWidth + (help.visible ? help.width + 8 : 0)
    implicitHeight: words.height
    Layout.fillWidth: true

    StatusDot {
        y: Math.round((words.contentHeight / words.lineCount - height) / 2) + 1
        tone: Status.tone
    }
    Label {
        id: words

        x: 16
        width: (help.visible ? help.x - 8 : line.width) - x
        text: Status.sentence
    }
    LinkButton {
        id: help

        y: Math.round((words.contentHeight / words.lineCount - height) / 2)
        anchors.right: parent.right
        visible: line.offersHelp && Status.tone >= Status.Warning
        text: qsTr("怎么办")
        Accessible.name: qsTr("手机连不上怎么办")
        onClicked: Shell.showHelp()
    }
}
