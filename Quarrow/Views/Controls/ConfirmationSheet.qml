import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tevrin

// Asks before an action that is hard to undo; Escape and a click outside mean no.
T.Dialog {
    id: sheet

    property string text
    property string confirmText
    property int confirmKind: PushButton.Danger

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    width: Math.min(400, parent ? parent.width - 32 : 400)
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    padding: 24
    modal: true
    focus: true

    contentItem: ColumnLayout {
        spacing: 12

        Heading {
            text: sheet.title
            Layout.fillWidth: true
        }
        Label {
            text: sheet.text
            secondary: true
            Layout.fillWidth: true
        }
        RowLayout {
            spacing: 8
            Layout.topMargin: 12
            Layout.alignment: Qt.AlignRight

            PushButton {
                objectName: "cancel"
                focus: true
                text: qsTr("取消")
                onClicked: sheet.reject()
            }
            PushButton {
                objectName: "confirm"
                text: sheet.confirmText
                kind: sheet.confirmKind
                onClicked: sheet.accept()
            }
        }
    }
    background: Rectangle {
        radius: Theme.radiusSheet
        color: Theme.surface
        border.width: 1
        border.color: Theme.line
        Accessible.role: Accessible.Dialog
        Accessible.name: sheet.title
    }

    T.Overlay.modal: Rectangle {
        color: Theme.scrim
    }
}
