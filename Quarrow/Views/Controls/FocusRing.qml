import QtQuick
import Tevrin

// Surrounds a control that has focus from the keyboard.
Rectangle {
    property bool shown: false
    property real innerRadius: Theme.radiusControl
    property real gap: 2

    anchors.fill: parent
    anchors.margins: -gap - border.width
    radius: innerRadius + gap + border.width
    color: "transparent"
    border.width: 2
    border.color: Theme.accent
    visible: shown
}
