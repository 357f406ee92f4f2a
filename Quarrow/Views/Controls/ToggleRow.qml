import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tevrin

// A switch with its name and a description in grey. The whole row is clickable.
T.Switch {
    id: control

    property string detail

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Math.max(implicitContentHeight, implicitIndicatorHeight)
    rightPadding: implicitIndicatorWidth + 16
    Accessible.name: text
    Accessible.description: detail

    contentItem: ColumnLayout {
        spacing: 2

        Label {
            text: control.text
            Layout.fillWidth: true
            Accessible.ignored: true
        }
        Label {
            visible: text
            text: control.detail
            secondary: true
            font.pixelSize: Theme.caption
            Layout.fillWidth: true
            Accessible.ignored: true
        }
    }
    indicator: Rectangle {
        x: control.width - width
        anchors.verticalCenter: parent.verticalCenter
        implicitWidth: 40
        implicitHeight: 24
        radius: 12
        color: control.checked ? Theme.accent : Theme.edge

        Behavior on color {
            enabled: !Theme.reducedMotion

            ColorAnimation {
                duration: Theme.motion
            }
        }
        Rectangle {
            x: control.checked ? 18 : 2
            y: 2
            width: 20
            height: 20
            radius: 10
            color: control.checked ? Theme.textOnAccent : Theme.surface

            Behavior on x {
                enabled: !Theme.reducedMotion

                NumberAnimation {
                    duration: Theme.motion
                    easing.type: Easing.OutCubic
                }
            }
        }
    }

    FocusRing {
        shown: control.visualFocus
    }
}
