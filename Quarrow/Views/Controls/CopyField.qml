import QtQuick
import QtQuick.Layouts
import Tevrin

// A command or a URL to copy.
Rectangle {
    id: field

    property string text
    property string what
    property string placeholder

    implicitWidth: 240
    implicitHeight: Math.max(40, words.implicitHeight + 16)
    radius: Theme.radiusControl
    color: Theme.background
    border.width: 1
    border.color: Theme.line

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 12
        anchors.rightMargin: 4
        spacing: 4

        TextEdit {
            id: words

            visible: field.text
            text: field.text
            readOnly: true
            selectByMouse: true
            activeFocusOnPress: true
            wrapMode: TextEdit.WrapAnywhere
            textFormat: TextEdit.PlainText
            color: Theme.text
            selectionColor: Theme.accent
            selectedTextColor: Theme.textOnAccent
            font.family: "monospace"
            font.pixelSize: Theme.caption
            Layout.fillWidth: true
            Accessible.role: Accessible.EditableText
            Accessible.readOnly: true
            Accessible.name: field.what
        }
        Label {
            visible: !field.text
            text: field.placeholder
            secondary: true
            font.pixelSize: Theme.caption
            Layout.fillWidth: true
        }
        CopyButton {
            copied: field.text
            what: field.what
            Layout.alignment: words.lineCount > 1 ? Qt.AlignTop : Qt.AlignVCenter
            Layout.topMargin: words.lineCount > 1 ? 4 : 0
        }
    }
}
