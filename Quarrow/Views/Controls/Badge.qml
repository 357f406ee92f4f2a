import QtQuick
import Tevrin

// A large round icon.
Rectangle {
    id: badge

    property string icon
    property color ink: Theme.accent

    implicitWidth: 88
    implicitHeight: 88
    radius: width / 2
    color: Theme.accentTint

    Icon {
        anchors.centerIn: parent
        width: 40
        height: 40
        name: badge.icon
        color: badge.ink
    }
}
