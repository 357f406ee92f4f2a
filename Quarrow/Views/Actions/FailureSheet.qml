import QtQuick
import QtQuick.Layouts
import Tevrin

// The failures of an action, file by file.
Sheet {
    id: sheet

    objectName: "failureSheet"
    title: Actions.failure
    widest: 440
    first: fine
    onClosed: Actions.dismissFailure()

    FileLines {
        visible: lines.length > 0
        lines: Actions.failureLines
        Layout.fillWidth: true
    }

    buttons: [
        Item {
            Layout.fillWidth: true
        },
        PushButton {
            id: fine

            text: qsTr("知道了")
            kind: PushButton.Primary
            onClicked: sheet.close()
        }
    ]
}
