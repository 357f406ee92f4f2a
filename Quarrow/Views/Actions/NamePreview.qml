import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tevrin

// Old and new names, line by line.
Rectangle {
    id: box

    property alias model: list.model

    implicitHeight: Math.min(Math.max(list.contentHeight, 28) + 16, 212)
    radius: Theme.radiusControl
    color: Theme.background
    border.width: 1
    border.color: Theme.line

    ListView {
        id: list

        objectName: "preview"
        anchors.fill: parent
        anchors.margins: 1
        topMargin: 7
        bottomMargin: 7
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: contentHeight > height
        Accessible.role: Accessible.List
        Accessible.name: qsTr("新的名称")
        Keys.onUpPressed: contentY = Math.max(originY - topMargin, contentY - 56)
        Keys.onDownPressed: contentY = Math.max(originY - topMargin, Math.min(contentY + 56, originY + contentHeight + bottomMargin - height))

        // qmllint disable unqualified
        delegate: RowLayout {
            required property string oldName
            required property string newName
            required property bool changes

            x: 11
            width: list.width - 22
            height: 28
            spacing: 12

            Label {
                text: oldName
                secondary: true
                wrapMode: Text.NoWrap
                elide: Text.ElideMiddle
                Layout.fillWidth: true
                Layout.preferredWidth: 1
            }
            Icon {
                name: "arrow"
                color: Theme.edge
                Layout.preferredWidth: 16
                Layout.preferredHeight: 16
            }
            Label {
                text: newName
                secondary: !changes
                wrapMode: Text.NoWrap
                elide: Text.ElideMiddle
                Layout.fillWidth: true
                Layout.preferredWidth: 1
            }
        }
        // qmllint enable unqualified
        T.ScrollBar.vertical: ScrollBar {}
    }
    FocusRing {
        shown: list.activeFocus
        gap: 0
    }
}
