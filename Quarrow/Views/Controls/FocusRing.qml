import QtQuick
import Tevrin

// Around a control that the keyboard has reached.
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
