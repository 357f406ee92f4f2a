import QtQuick
import Tevrin

// A click leaves focus on the photo.
IconButton {
    focusPolicy: Qt.TabFocus
    opacity: enabled ? 1 : 0.35
}
