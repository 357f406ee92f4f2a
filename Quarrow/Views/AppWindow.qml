import QtQuick
import QtQuick.Templates as T

T.ApplicationWindow {
    id: window

    color: Theme.background

    Shortcut {
        sequences: ["Ctrl+W"]
        onActivated: window.close()
    }
}
