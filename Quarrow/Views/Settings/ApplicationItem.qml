import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tevrin

// An application to choose.
T.AbstractButton {
    id: item

    required property int index
    required property string name
    required property string picture
    required property string entry
    property bool chosen: false
    property bool ringed: false

    implicitHeight: 44
    leftPadding: 8
    rightPadding: 12
    focusPolicy: Qt.NoFocus
    Accessible.role: Accessible.ListItem
    Accessible.name: name
    Accessible.selected: chosen

    contentItem: RowLayout {
        spacing: 12

        AppIcon {
            name: item.picture
            Layout.preferredWidth: 28
            Layout.preferredHeight: 28
        }
        Label {
            text: item.name
            wrapMode: Text.NoWrap
            elide: Text.ElideRight
            Layout.fillWidth: true
            Accessible.ignored: true
        }
        Icon {
            visible: item.chosen
            name: "check"
            color: Theme.accent
            Layout.preferredWidth: 18
            Layout.preferredHeight: 18
        }
    }
    background: Rectangle {
        radius: Theme.radiusControl
        color: item.ringed || item.hovered ? Theme.accentTint : "transparent"
    }
}
