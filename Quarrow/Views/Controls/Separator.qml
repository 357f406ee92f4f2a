import QtQuick
import QtQuick.Layouts
import Tevrin

Rectangle {
    color: Theme.line
    Layout.fillWidth: true
    Layout.preferredHeight: 1
}
