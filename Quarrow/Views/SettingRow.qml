import QtQuick
import QtQuick.Layouts
import Tevrin

// What a setting is called and means, and beside it its control.
RowLayout {
    id: row

    default property alias control: place.data
    property string text
    property string detail

    spacing: 16

    ColumnLayout {
        spacing: 2

        Words {
            text: row.text
            Layout.fillWidth: true
        }
        Words {
            visible: text
            text: row.detail
            quiet: true
            font.pixelSize: Theme.caption
            Layout.fillWidth: true
        }
    }
    RowLayout {
        id: place

        spacing: 8
        Layout.fillWidth: false
    }
}
