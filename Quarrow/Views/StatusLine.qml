import QtQuick
import QtQuick.Layouts
import Tevrin

// A dot and a sentence, and the way to help when something is wrong.
RowLayout {
    property bool offersHelp: true

    spacing: 8

    StatusDot {
        tone: Status.tone
        Layout.alignment: Qt.AlignTop
        Layout.topMargin: Math.round((metrics.height - height) / 2)
    }
    Words {
        text: Status.sentence
        Layout.fillWidth: true
    }
    LinkButton {
        visible: parent.offersHelp && Status.tone >= Status.Warning
        text: qsTr("怎么办")
        Accessible.name: qsTr("手机连不上怎么办")
        Layout.alignment: Qt.AlignTop
        onClicked: Shell.showHelp()
    }
    FontMetrics {
        id: metrics

        font.pixelSize: Theme.body
    }
}
