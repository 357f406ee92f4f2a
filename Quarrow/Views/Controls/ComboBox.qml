import QtQuick
import QtQuick.Templates as T
import Tevrin

// Selects a value: `model` is a list of objects with `text` and `value`.
T.ComboBox {
    id: control

    property var value
    property string name

    signal chosen(var value)

    function follow() {
        currentIndex = Math.max(0, indexOfValue(value));
    }

    textRole: "text"
    valueRole: "value"
    implicitWidth: 160
    implicitHeight: 36
    leftPadding: 12
    rightPadding: 32
    Accessible.name: name
    onValueChanged: follow()
    onModelChanged: follow()
    onActivated: chosen(currentValue)
    Component.onCompleted: follow()

    contentItem: Label {
        text: control.displayText
        wrapMode: Text.NoWrap
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }
    indicator: Icon {
        x: control.width - width - 8
        y: (control.height - height) / 2
        width: 18
        height: 18
        name: "chevron"
        color: Theme.secondaryText
    }
    background: Rectangle {
        radius: Theme.radiusControl
        color: control.down || control.hovered ? Qt.darker(Theme.surface, 1.03) : Theme.surface
        border.width: 1
        border.color: Theme.line

        FocusRing {
            shown: control.visualFocus
        }
    }
    // qmllint disable unqualified
    delegate: ComboBoxItem {
        required property var modelData
        required property int index

        width: ListView.view.width
        text: modelData.text
        current: control.currentIndex === index
        highlighted: control.highlightedIndex === index
    }
    // qmllint enable unqualified
    popup: T.Popup {
        y: control.height + 4
        width: control.width
        height: Math.min(contentItem.implicitHeight + 8, 320)
        padding: 4
        margins: 8

        contentItem: ListView {
            clip: true
            implicitHeight: contentHeight
            model: control.delegateModel
            currentIndex: control.highlightedIndex
            boundsBehavior: Flickable.StopAtBounds
        }
        background: Rectangle {
            radius: Theme.radiusCard
            color: Theme.surface
            border.width: 1
            border.color: Theme.line
        }
    }
}
