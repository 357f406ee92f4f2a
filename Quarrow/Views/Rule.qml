import QtQuick
import QtQuick.Layouts

Rectangle {
    color: Theme.line
    Layout.fillWidth: true
    Layout.preferredHeight: 1
}
