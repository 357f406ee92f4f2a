import QtQuick
import Tevrin

// The keyboard stays with the photo when one is clicked.
IconButton {
    focusPolicy: Qt.TabFocus
    opacity: enabled ? 1 : 0.35
}
