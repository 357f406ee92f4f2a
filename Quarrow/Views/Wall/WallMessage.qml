import QtQuick
import QtQuick.Layouts
import Tevrin

// The text of a wall without photos, and what the user can do.
ColumnLayout {
    id: message

    default property alias actions: row.data
    property string icon
    property string title
    property string text
    property bool grave: false

    width: Math.min(420, parent.width - 48)
    spacing: 8

    Badge {
        icon: message.icon
        ink: message.grave ? Theme.warning : Theme.accent
        color: message.grave ? Theme.warningTint : Theme.accentTint
        Layout.alignment: Qt.AlignHCenter
        Layout.bottomMargin: 16
    }
    Heading {
        text: message.title
        horizontalAlignment: Text.AlignHCenter
        Layout.fillWidth: true
    }
    Label {
        visible: text
        text: message.text
        secondary: true
        lineHeight: 1.15
        horizontalAlignment: Text.AlignHCenter
        Layout.fillWidth: true
    }
    RowLayout {
        id: row

        spacing: 8
        Layout.topMargin: 16
        Layout.alignment: Qt.AlignHCenter
    }
}
