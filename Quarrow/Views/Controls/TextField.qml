import QtQuick
import QtQuick.Templates as T
import Tevrin

// A line of text with an error below it. Input is committed after a short pause, with Return and when focus
// leaves; Escape restores the current value.
FocusScope {
    id: box

    property string value // the current value, shown unless the user is typing
    property string name
    property string placeholder
    property string detail
    property string error
    property string unit
    property int pause: 300 // in milliseconds; 0: each key commits; negative: only the end commits
    readonly property string text: input.text
    property alias maximumLength: input.maximumLength
    property alias horizontalAlignment: input.horizontalAlignment
    property alias inputMethodHints: input.inputMethodHints
    property alias validator: input.validator

    signal taken(string text)

    function hand() {
        typing.stop();
        if (input.fresh) {
            input.fresh = false;
            taken(input.text);
        }
    }
    function follow() {
        if (!input.fresh && !error)
            input.text = value;
    }
    function revert() {
        input.text = value;
        input.fresh = true;
        hand();
    }
    function selectAll() {
        input.selectAll();
    }

    implicitWidth: 200
    implicitHeight: input.height + (wrong.visible ? wrong.height + 4 : 0)
    onValueChanged: follow()
    onErrorChanged: follow()
    Component.onCompleted: follow()

    T.TextField {
        id: input

        property bool fresh: false // typed and not committed yet

        objectName: "input"
        focus: true
        width: box.width
        height: 36
        leftPadding: 12
        rightPadding: unitText.visible ? unitText.width + 20 : 12
        verticalAlignment: TextInput.AlignVCenter
        selectByMouse: true
        color: Theme.text
        selectionColor: Theme.accent
        selectedTextColor: Theme.textOnAccent
        font.pixelSize: Theme.body
        opacity: box.enabled ? 1 : 0.45
        Accessible.name: box.name
        Accessible.description: box.error ? box.error : box.detail
        onTextEdited: {
            fresh = true;
            if (box.pause === 0)
                box.hand();
            else if (box.pause > 0)
                typing.restart();
        }
        onAccepted: {
            fresh = true;
            box.hand();
        }
        onActiveFocusChanged: {
            if (!activeFocus)
                box.hand();
            else if (focusReason === Qt.TabFocusReason || focusReason === Qt.BacktabFocusReason)
                selectAll();
        }
        Keys.onEscapePressed: event => {
            event.accepted = text !== box.value || box.error !== "";
            if (event.accepted)
                box.revert();
        }

        background: Rectangle {
            radius: Theme.radiusControl
            color: Theme.surface
            border.width: box.error ? 1.5 : 1
            border.color: box.error ? Theme.danger : input.hovered ? Theme.edge : Theme.line

            FocusRing {
                shown: input.activeFocus
                gap: -1
                border.color: box.error ? Theme.danger : Theme.accent
            }
        }

        Label {
            anchors.fill: parent
            leftPadding: input.leftPadding
            rightPadding: input.rightPadding
            visible: !input.text && !input.preeditText
            text: box.placeholder
            secondary: true
            wrapMode: Text.NoWrap
            elide: Text.ElideRight
            verticalAlignment: Text.AlignVCenter
            horizontalAlignment: input.horizontalAlignment
            Accessible.ignored: true
        }
        Label {
            id: unitText

            anchors.right: parent.right
            anchors.rightMargin: 12
            anchors.verticalCenter: parent.verticalCenter
            visible: text
            text: box.unit
            secondary: true
            wrapMode: Text.NoWrap
            Accessible.ignored: true
        }
    }
    Timer {
        id: typing

        interval: Math.max(0, box.pause)
        onTriggered: box.hand()
    }
    Label {
        id: wrong

        y: input.height + 4
        width: box.width
        visible: text
        text: box.error
        color: Theme.danger
        font.pixelSize: Theme.caption
        Accessible.role: Accessible.AlertMessage
    }
}
