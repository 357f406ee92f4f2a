import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tevrin

// The code for phones, over the wall.
T.Popup {
    id: popup

    width: 300
    height: contentItem.implicitHeight + 32
    padding: 16
    margins: 8
    focus: true

    contentItem: ColumnLayout {
        spacing: 12

        QRCard {
            Layout.fillWidth: true
            Layout.preferredHeight: filled ? width : 148
        }
        AddressLine {
            focus: true
            Layout.fillWidth: true
            Layout.topMargin: -4
        }
        AddressPicker {
            Layout.fillWidth: true
        }
        StatusLine {}
    }
    background: Rectangle {
        radius: Theme.radiusCard
        color: Theme.background
        border.width: 1
        border.color: Theme.line
        Accessible.role: Accessible.Pane
        Accessible.name: qsTr("接收照片")
    }
    enter: Transition {
        NumberAnimation {
            property: "opacity"
            from: 0
            to: 1
            duration: Theme.motion
            easing.type: Easing.OutCubic
        }
    }
}
