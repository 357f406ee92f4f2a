import QtQuick
import QtQuick.Layouts
import Tevrin

// Selects one of the pages of a window: `pages` is a list of objects with `text` and `icon`. The arrow keys
// move between them.
FocusScope {
    id: switcher

    property var pages: []
    property int current: 0

    function go(by) {
        current = (current + by + pages.length) % pages.length;
        tabs.itemAt(current).forceActiveFocus(Qt.TabFocusReason);
    }

    implicitWidth: row.implicitWidth + 8
    implicitHeight: 44
    Accessible.role: Accessible.PageTabList
    Accessible.name: qsTr("设置的分类")
    Keys.onLeftPressed: go(-1)
    Keys.onRightPressed: go(1)

    Rectangle {
        anchors.fill: parent
        radius: Theme.radiusCard
        color: Theme.track
    }
    RowLayout {
        id: row

        anchors.fill: parent
        anchors.margins: 4
        spacing: 4

        Repeater {
            id: tabs

            model: switcher.pages

            // qmllint disable unqualified
            PageTab {
                required property var modelData
                required property int index

                text: modelData.text
                icon.name: modelData.icon
                checked: switcher.current === index
                focus: checked
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                Layout.fillHeight: true
                onClicked: switcher.current = index
            }
            // qmllint enable unqualified
        }
    }
}
