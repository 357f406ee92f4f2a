import QtQuick
import Tevrin

// Asks for a folder with the desktop's own dialog.
QtObject {
    id: picker

    property string title
    property url currentFolder
    property url selectedFolder

    signal accepted

    function open() {
        Shell.askForFolder(title, currentFolder, folder => {
            selectedFolder = folder;
            accepted();
        });
    }
}
