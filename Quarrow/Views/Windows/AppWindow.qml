import QtQuick
import QtQuick.Templates as T
import Tevrin

T.ApplicationWindow {
    id: window

    color: Theme.background

    Shortcut {
        sequences: ["Ctrl+W"]
        onActivated: window.close()
    }
}
