import QtQuick
import Tevrin

// Plain text, never markup: names come from phones and disks.
Text {
    property bool secondary: false

    color: secondary ? Theme.secondaryText : Theme.text
    font.pixelSize: Theme.body
    wrapMode: Text.Wrap
    textFormat: Text.PlainText
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
