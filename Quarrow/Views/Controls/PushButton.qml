import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tevrin

T.Button {
    id: control

    enum Kind { Plain, Primary, Danger }

    property int kind: PushButton.Plain
    readonly property color ground: kind === PushButton.Primary ? Theme.accent : kind === PushButton.Danger ? Theme.danger : Theme.surface
    readonly property color ink: kind === PushButton.Primary ? Theme.textOnAccent : kind === PushButton.Danger ? Theme.textOnDanger : Theme.text

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: 36
    leftPadding: icon.name ? 12 : 16
    rightPadding: 16
    opacity: enabled ? 1 : 0.45
    Accessible.name: text
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: RowLayout {
        spacing: 8

        Icon {
            visible: control.icon.name
            name: control.icon.name
            color: control.ink
            Layout.preferredWidth: 18
            Layout.preferredHeight: 18
        }
        Label {
            text: control.text
            color: control.ink
            font.weight: Font.DemiBold
            wrapMode: Text.NoWrap
            elide: Text.ElideRight
            horizontalAlignment: Text.AlignHCenter
            Layout.fillWidth: true
            Accessible.ignored: true
        }
    }
    background: Rectangle {
        radius: Theme.radiusControl
        color: control.down ? Qt.darker(control.ground, 1.12) : control.hovered ? Qt.darker(control.ground, 1.05) : control.ground
        border.width: control.kind === PushButton.Plain ? 1 : 0
        border.color: Theme.line

        Behavior on color {
            enabled: !Theme.reducedMotion

            ColorAnimation {
                duration: Theme.motion
            }
        }
        FocusRing {
            shown: control.visualFocus || control.activeFocus && control.focusReason === Qt.PopupFocusReason
        }
    }
}
