import QtQuick
import QtQuick.Layouts
import Tevrin

// The effect of the settings above it on the next photo.
RowLayout {
    id: outlook

    property string text
    property string what

    spacing: 8
    Accessible.role: Accessible.StaticText
    Accessible.name: qsTr("%1 %2").arg(text).arg(what)

    Icon {
        name: "image"
        color: Theme.accent
        Layout.preferredWidth: 18
        Layout.preferredHeight: 18
        Layout.alignment: Qt.AlignTop
    }
    GridLayout {
        columns: outlook.width < 440 ? 1 : 2
        columnSpacing: 8
        rowSpacing: 2
        Layout.topMargin: 1

        Label {
            text: outlook.text
            secondary: true
            font.pixelSize: Theme.caption
            wrapMode: Text.NoWrap
            Layout.alignment: Qt.AlignTop
            Accessible.ignored: true
        }
        Label {
            text: outlook.what || "…"
            font.pixelSize: Theme.caption
            wrapMode: Text.WrapAnywhere
            Layout.fillWidth: true
            Accessible.ignored: true
        }
    }
}
