import QtQuick
import QtQuick.Templates as T
import Tevrin

T.MenuSeparator {
    implicitHeight: 9
    leftPadding: 10
    rightPadding: 10
    Accessible.role: Accessible.Separator

    contentItem: Item {
        Rectangle {
            y: 4
            width: parent.width
            height: 1
            color: Theme.line
        }
    }
}
