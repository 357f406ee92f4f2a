import QtQuick
import QtQuick.Layouts
import Tevrin

// One hint: an icon, its name and what to do.
RowLayout {
    id: item

    default property alias more: column.data
    property string icon
    property string sign
    property string title
    property string text

    spacing: 12

    Rectangle {
        color: Theme.accentTint
        radius: 16
        Layout.preferredWidth: 32
        Layout.preferredHeight: 32
        Layout.alignment: Qt.AlignTop

        Icon {
            anchors.centerIn: parent
            visible: item.icon
            width: 18
            height: 18
            name: item.icon
            color: Theme.accent
        }
        Label {
            anchors.centerIn: parent
            text: item.sign
            color: Theme.accent
            font.weight: Font.DemiBold
            Accessible.ignored: true
        }
    }
    ColumnLayout {
        id: column

        spacing: 4
        Layout.alignment: item.title ? Qt.AlignTop : Qt.AlignVCenter

        Label {
            visible: text
            text: item.title
            font.weight: Font.DemiBold
            Layout.fillWidth: true
        }
        Label {
            visible: text
            text: item.text
            secondary: item.title
            lineHeight: 1.1
            Layout.fillWidth: true
        }
    }
}
