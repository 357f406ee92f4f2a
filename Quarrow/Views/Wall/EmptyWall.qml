import QtQuick
import QtQuick.Layouts
import Tevrin

// A wall without photos: how to send the first one.
ScrollPage {
    id: page

    readonly property bool wide: width >= 720

    padding: 32
    widest: wide ? 760 : 360

    Item {
        id: place

        readonly property real least: page.wide ? Math.max(code.height, words.height) : code.height + 24 + words.height
        readonly property real upper: Math.round((height - least) / 2)

        implicitHeight: Math.max(least, page.height - 64)
        Layout.fillWidth: true

        ColumnLayout {
            id: code

            x: page.wide ? 0 : Math.round((place.width - width) / 2)
            y: page.wide ? Math.round((place.height - height) / 2) : place.upper
            width: 312
            spacing: 8

            QRCard {
                Layout.fillWidth: true
            }
            AddressLine {
                Layout.fillWidth: true
            }
        }
        GreetingColumn {
            id: words

            x: page.wide ? code.width + 48 : 0
            y: page.wide ? Math.round((place.height - height) / 2) : code.y + code.height + 24
            width: place.width - x
        }
    }
}
