import QtQuick
import QtQuick.Templates as T
import Tevrin

// A short list of lines that scrolls if there are many.
Rectangle {
    id: box

    property var lines: []

    implicitHeight: Math.min(list.contentHeight + 16, 168)
    radius: Theme.radiusControl
    color: Theme.background
    border.width: 1
    border.color: Theme.line

    ListView {
        id: list

        anchors.fill: parent
        anchors.margins: 1
        topMargin: 7
        bottomMargin: 7
        clip: true
        spacing: 4
        model: box.lines
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: contentHeight > height
        keyNavigationEnabled: true
        Accessible.role: Accessible.List
        Accessible.name: qsTr("文件")

        // qmllint disable unqualified
        delegate: Label {
            required property string modelData

            width: list.width
            leftPadding: 11
            rightPadding: 11
            text: modelData
            font.pixelSize: Theme.caption
        }
        // qmllint enable unqualified
        T.ScrollBar.vertical: ScrollBar {}
    }
    FocusRing {
        shown: list.activeFocus
        gap: 0
    }
}
