import QtQuick
import QtQuick.Templates as T
import Tevrin

// Edits the name of the focused photo without its extension. Return and a click elsewhere accept, Escape
// cancels; an error is shown below.
FocusScope {
    id: box

    property string error
    property string before
    property string extension

    // Focus returns to where it was.
    signal closed

    function start() {
        error = "";
        const dot = Wall.currentName.lastIndexOf(".");
        before = dot > 0 ? Wall.currentName.slice(0, dot) : Wall.currentName;
        extension = Wall.currentName.slice(before.length);
        input.text = before;
        visible = true;
        input.forceActiveFocus();
        input.selectAll();
    }
    function finish() {
        if (!visible)
            return;
        error = input.text === before ? "" : Actions.rename(input.text);
        if (!error)
            leave();
    }
    function leave() {
        visible = false;
        error = "";
        closed();
    }

    objectName: "renameBox"
    visible: false
    height: input.height + (wrong.visible ? wrong.height + 4 : 0)

    T.TextField {
        id: input

        objectName: "renameInput"
        focus: true
        width: box.width
        height: 32
        leftPadding: 8
        rightPadding: suffix.width + 12
        verticalAlignment: TextInput.AlignVCenter
        selectByMouse: true
        color: Theme.text
        selectionColor: Theme.accent
        selectedTextColor: Theme.textOnAccent
        font.pixelSize: Theme.body
        Accessible.name: qsTr("新名称")
        Accessible.description: box.error
        Keys.onReturnPressed: box.finish()
        Keys.onEnterPressed: box.finish()
        Keys.onEscapePressed: box.leave()
        onActiveFocusChanged: {
            if (!activeFocus && box.visible)
                box.error ? box.leave() : box.finish();
        }

        background: Rectangle {
            radius: Theme.radiusControl
            color: Theme.surface
            border.width: 2
            border.color: box.error ? Theme.danger : Theme.accent
        }

        Label {
            id: suffix

            anchors.right: parent.right
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            text: box.extension
            secondary: true
        }
    }
    Rectangle {
        id: wrong

        y: input.height + 4
        width: box.width
        height: words.implicitHeight + 12
        visible: box.error
        radius: Theme.radiusControl
        color: Theme.dangerTint
        border.width: 1
        border.color: Theme.danger

        Label {
            id: words

            x: 8
            y: 6
            width: parent.width - 16
            text: box.error
            font.pixelSize: Theme.caption
            Accessible.role: Accessible.AlertMessage
        }
    }
}
