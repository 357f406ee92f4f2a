import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tevrin

// A modal dialog over its window: a title, content that scrolls in a low window, and buttons. Escape closes
// it; `first` gets focus when it opens.
T.Dialog {
    id: sheet

    default property alias content: page.content
    property alias buttons: row.data
    property string detail
    property int widest: 480
    property Item first: null

    readonly property Item body: ColumnLayout {
        spacing: 4

        Heading {
            text: sheet.title
            Layout.fillWidth: true
        }
        Label {
            visible: text
            text: sheet.detail
            secondary: true
            Layout.fillWidth: true
        }
        ScrollPage {
            id: page

            padding: 6 // space for the focus rings of controls
            spacing: 16
            implicitHeight: fittingHeight
            widest: sheet.availableWidth // the margin is for the scroll bar
            Layout.leftMargin: -14
            Layout.rightMargin: -14
            Layout.topMargin: 6
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.maximumHeight: fittingHeight
        }
        RowLayout {
            id: row

            spacing: 8
            Layout.topMargin: 6
            Layout.fillWidth: true
        }
    }

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    width: Math.min(widest, parent ? parent.width - 32 : widest)
    height: Math.min(implicitContentHeight + topPadding + bottomPadding, parent ? parent.height - 32 : Infinity)
    padding: 24
    modal: true
    focus: true
    closePolicy: T.Popup.CloseOnEscape
    onOpened: (first ?? page)?.forceActiveFocus(Qt.TabFocusReason)

    contentItem: body
    background: Rectangle {
        radius: Theme.radiusSheet
        color: Theme.surface
        border.width: 1
        border.color: Theme.line
        Accessible.role: Accessible.Dialog
        Accessible.name: sheet.title
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

    T.Overlay.modal: Rectangle {
        color: Theme.scrim
    }
}
