import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tevrin

T.TabButton {
    id: tab

    readonly property color ink: checked ? Theme.accent : hovered ? Theme.text : Theme.secondaryText

    implicitWidth: implicitContentWidth + 24
    implicitHeight: 36
    activeFocusOnTab: checked
    Accessible.name: text

    contentItem: RowLayout {
        spacing: 8

        Item {
            Layout.fillWidth: true
        }
        Icon {
            name: tab.icon.name
            color: tab.ink
            Layout.preferredWidth: 18
            Layout.preferredHeight: 18
        }
        Label {
            text: tab.text
            color: tab.ink
            font.weight: tab.checked ? Font.DemiBold : Font.Normal
            wrapMode: Text.NoWrap
            elide: Text.ElideRight
            Layout.maximumWidth: implicitWidth
            Accessible.ignored: true
        }
        Item {
            Layout.fillWidth: true
        }
    }
    background: Rectangle {
        radius: Theme.radiusControl
        color: Theme.surface
        opacity: tab.checked ? 1 : 0

        FocusRing {
            shown: tab.visualFocus
            gap: 0
        }
    }
}
