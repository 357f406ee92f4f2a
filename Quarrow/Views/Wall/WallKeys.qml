import QtQuick
import Tevrin

// What the keys mean on the wall itself; what they do to photos is not among it.
QtObject {
    id: keys

    required property WallLayout layout

    signal lookedAt
    signal menuWanted

    readonly property var plain: ({
            [Qt.Key_Space]: () => keys.lookedAt(),
            [Qt.Key_Menu]: () => keys.menuWanted()
        })
    readonly property var withControl: ({
            [Qt.Key_Plus]: () => Wall.tileSize += 24,
            [Qt.Key_Equal]: () => Wall.tileSize += 24,
            [Qt.Key_Minus]: () => Wall.tileSize -= 24
        })

    readonly property var withShift: ({
            [Qt.Key_F10]: () => keys.menuWanted()
        })

    // False for keys that mean nothing here.
    function press(event) {
        const all = {
            [Qt.NoModifier]: plain,
            [Qt.ControlModifier]: withControl,
            [Qt.ShiftModifier]: withShift
        };
        const meant = all[event.modifiers & ~Qt.KeypadModifier]?.[event.key];
        if (meant)
            meant();
        return Boolean(meant) || Wall.press(event.key, event.modifiers, event.text, layout.columns, layout.rows);
    }
}
