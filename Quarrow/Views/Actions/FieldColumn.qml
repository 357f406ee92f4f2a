import QtQuick
import QtQuick.Layouts
import Tevrin

// A field with its name above it.
ColumnLayout {
    id: field

    default property alias content: place.data
    property string label

    spacing: 4

    Label {
        text: field.label
        secondary: true
        font.pixelSize: Theme.caption
        Accessible.ignored: true
    }
    ColumnLayout {
        id: place

        Layout.fillWidth: true
    }
}
