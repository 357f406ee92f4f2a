import QtQuick
import QtQuick.Layouts
import Tevrin

Rectangle {
    id: card

    default property alias content: column.data
    property int padding: 16
    property alias spacing: column.spacing

    implicitWidth: column.implicitWidth + 2 * padding
    implicitHeight: column.implicitHeight + 2 * padding
    radius: Theme.radiusCard
    color: Theme.surface
    border.width: 1
    border.color: Theme.line

    ColumnLayout {
        id: column

        anchors.fill: parent
        anchors.margins: card.padding
        spacing: 12
    }
}
