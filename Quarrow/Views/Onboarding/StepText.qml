import QtQuick
import QtQuick.Layouts
import Tevrin

// The text of one step.
ColumnLayout {
    id: words

    property string title
    property string text

    spacing: 8

    Heading {
        text: words.title
        horizontalAlignment: Text.AlignHCenter
        Layout.fillWidth: true
    }
    Label {
        text: words.text
        secondary: true
        lineHeight: 1.15
        horizontalAlignment: Text.AlignHCenter
        Layout.fillWidth: true
    }
}
