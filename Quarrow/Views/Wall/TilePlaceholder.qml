import QtQuick
import QtQuick.Layouts
import Tevrin

// Shown on a tile instead of a picture.
ColumnLayout {
    id: sign

    property string name // empty if it is shown elsewhere
    property string sizeText
    property string detail
    property string icon

    spacing: 0

    Item {
        Layout.fillHeight: true
    }
    Rectangle {
        implicitWidth: Math.min(48, sign.width / 3)
        implicitHeight: implicitWidth
        radius: width / 2
        color: Theme.accentTint
        Layout.alignment: Qt.AlignHCenter

        Icon {
            anchors.centerIn: parent
            width: Math.round(parent.width / 2)
            height: width
            name: sign.icon
            color: Theme.accent
        }
    }
    Label {
        visible: text
        text: sign.name
        font.pixelSize: Theme.caption
        wrapMode: Text.NoWrap
        elide: Text.ElideMiddle
        horizontalAlignment: Text.AlignHCenter
        Layout.fillWidth: true
        Layout.leftMargin: 8
        Layout.rightMargin: 8
        Layout.topMargin: 8
        Accessible.ignored: true
    }
    Label {
        text: sign.detail || sign.sizeText
        secondary: true
        font.pixelSize: Theme.caption
        wrapMode: Text.NoWrap
        elide: Text.ElideRight
        horizontalAlignment: Text.AlignHCenter
        Layout.fillWidth: true
        Layout.leftMargin: 8
        Layout.rightMargin: 8
        Layout.topMargin: sign.name ? 0 : 8
        Accessible.ignored: true
    }
    Item {
        Layout.fillHeight: true
    }
}
