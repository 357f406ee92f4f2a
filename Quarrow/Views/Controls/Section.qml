import QtQuick
import QtQuick.Layouts
import Tevrin

// A card with a title.
ColumnLayout {
    id: section

    default property alias content: card.content
    property string title

    spacing: 8

    Label {
        text: section.title
        font.weight: Font.DemiBold
        Layout.leftMargin: 4
        Layout.fillWidth: true
        Accessible.role: Accessible.Heading
    }
    Card {
        id: card

        spacing: 16
        Layout.fillWidth: true
    }
}
