import QtQuick
import Tevrin

PushButton {
    property int attempt
    property string what

    objectName: "try"
    text: qsTr("试一下")
    Accessible.name: qsTr("试一下：%1").arg(what)
    onClicked: Settings.workflow.tryOut(attempt)
}
