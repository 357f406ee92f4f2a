import QtQuick
import QtQuick.Layouts
import Tevrin

// A setting's name and description with its control beside it, or below it if there is no room.
GridLayout {
    id: row

    default property alias control: place.data
    property string text
    property string detail
    readonly property bool stacked: width < 420 && place.implicitWidth > 130

    columns: stacked ? 1 : 2
    columnSpacing: 16
    rowSpacing: 8
    Layout.fillWidth: true

    ColumnLayout {
        spacing: 2
        Layout.alignment: place.implicitHeight > 44 ? Qt.AlignTop : Qt.AlignVCenter
        Layout.fillWidth: true

        Label {
            text: row.text
            Layout.fillWidth: true
        }
        Label {
            visible: text
            text: row.detail
            secondary: true
            font.pixelSize: Theme.caption
            Layout.fillWidth: true
        }
    }
    RowLayout {
        id: place

        spacing: 8
        Layout.fillWidth: false
        Layout.alignment: implicitHeight > 44 || row.stacked ? Qt.AlignTop : Qt.AlignVCenter
    }
}
