import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tevrin

// A modal sheet over its window: a title, what it is about, which scrolls where the window is low, and its
// buttons. Escape closes it; `first` gets the keyboard when it opens.
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

            padding: 6 // for the rings around controls
            spacing: 16
            implicitHeight: fittingHeight
            widest: sheet.availableWidth // what is left at its sides is the scroll bar's
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
