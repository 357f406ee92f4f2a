import QtQuick
import QtQuick.Templates as T
import Tevrin

// The zoom level; a click toggles between the whole photo and original size.
T.Button {
    id: control

    required property Zoom zoom
    readonly property string share: qsTr("%1%").arg(zoom.percent)

    implicitWidth: 56
    implicitHeight: 32
    focusPolicy: Qt.TabFocus
    opacity: enabled ? 1 : 0.35
    text: zoom.fitted ? qsTr("原始大小") : qsTr("适合窗口")
    Accessible.name: text
    Accessible.description: share
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()
    onClicked: zoom.toggle(Qt.point(zoom.view.width / 2, zoom.view.height / 2))

    contentItem: Label {
        text: control.enabled ? control.share : ""
        secondary: !control.hovered
        font.pixelSize: Theme.caption
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }
    background: Rectangle {
        radius: Theme.radiusControl
        color: Theme.text
        opacity: control.hovered ? 0.06 : 0
    }

    FocusRing {
        shown: control.visualFocus
        gap: 0
    }
    ToolTip {
        text: control.text
        shown: control.hovered
    }
}
