import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tevrin

// An entry of a menu with its icon and shortcut.
T.MenuItem {
    id: control

    property string keys
    property bool grave: false
    readonly property string sign: subMenu ? (subMenu as PopupMenu)?.iconName ?? "" : icon.name
    readonly property color ink: grave ? Theme.danger : Theme.text

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: visible ? 32 : 0
    leftPadding: 10
    rightPadding: 10
    opacity: enabled ? 1 : 0.45
    Accessible.role: Accessible.MenuItem
    Accessible.name: text
    Accessible.description: keys

    contentItem: RowLayout {
        spacing: 10

        Icon {
            visible: control.sign
            name: control.sign
            color: control.grave ? Theme.danger : Theme.secondaryText
            Layout.preferredWidth: 18
            Layout.preferredHeight: 18
        }
        Label {
            text: control.text
            color: control.ink
            wrapMode: Text.NoWrap
            elide: Text.ElideRight
            Layout.fillWidth: true
            Layout.maximumWidth: 320
            Accessible.ignored: true
        }
        Label {
            visible: text
            text: control.keys
            secondary: true
            font.pixelSize: Theme.caption
            wrapMode: Text.NoWrap
            Layout.leftMargin: 24
            Accessible.ignored: true
        }
        Icon {
            visible: control.subMenu
            name: "chevron"
            color: Theme.secondaryText
            rotation: -90
            Layout.leftMargin: 24
            Layout.preferredWidth: 16
            Layout.preferredHeight: 16
        }
    }
    background: Rectangle {
        radius: Theme.radiusControl
        color: !control.highlighted || !control.enabled ? "transparent" : control.grave ? Theme.dangerTint : Theme.accentTint
    }
}
