import QtQuick
import QtQuick.Layouts
import Tevrin

// A field with its name above it.
ColumnLayout {
    id: field

    default property alias content: place.data
    property string text

    spacing: 4
    Layout.fillWidth: true
    Layout.alignment: Qt.AlignTop

    Label {
        text: field.text
        secondary: true
        font.pixelSize: Theme.caption
        Accessible.ignored: true
    }
    RowLayout {
        id: place

        Layout.fillWidth: true
    }
}
