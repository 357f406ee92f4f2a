import QtQuick
import Tevrin

// Everything that photo actions show over the window with the photos, and their keys: the focused item
// forwards keys to it (`Keys.forwardTo`) and calls `popup()` for the menu. A single photo is renamed on its
// tile.
Item {
    id: layer

    readonly property bool sheetOpen: sheets.opened

    signal renameAsked
    signal released // focus returns to the photos

    function popup() {
        if (Actions.count > 0)
            menu.popup();
    }
    // Opens the menu beside the focused item, for keyboard users.
    function popupAt(item) {
        if (Actions.count > 0)
            menu.popup(item, Math.round(item.width / 2), Math.round(item.height / 2));
    }
    function rename() {
        if (Actions.count === 1)
            renameAsked();
        else
            sheets.rename();
    }
    function exportPhotos() {
        sheets.exportPhotos();
    }
    function pressedWithControl(key) {
        if (key === Qt.Key_C)
            Actions.copy();
        else if (key === Qt.Key_Z)
            Actions.undo();
        else if (key === Qt.Key_L)
            Actions.rotate(Actions.Anticlockwise);
        else if (key === Qt.Key_R)
            Actions.rotate(Actions.Clockwise);
        else if (key === Qt.Key_T)
            Actions.sortByDate();
        else if (key === Qt.Key_E)
            exportPhotos();
        else
            return false;
        return true;
    }
    function pressed(key) {
        if (key === Qt.Key_Delete)
            Actions.trash();
        else if (key === Qt.Key_F2)
            rename();
        else if (key === Qt.Key_Return || key === Qt.Key_Enter)
            Actions.open();
        else
            return false;
        return true;
    }

    Keys.onPressed: event => {
        if (event.modifiers === Qt.ControlModifier)
            event.accepted = pressedWithControl(event.key);
        else if (event.modifiers === Qt.NoModifier || event.modifiers === Qt.KeypadModifier)
            event.accepted = pressed(event.key);
        else
            event.accepted = false;
    }

    PhotoMenu {
        id: menu

        sheets: sheets
        onRenameAsked: layer.renameAsked()
    }
    UndoBar {
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 16
        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(implicitWidth, parent.width - 32)
        onReleased: layer.released()
    }
    ActionSheets {
        id: sheets
    }
}
