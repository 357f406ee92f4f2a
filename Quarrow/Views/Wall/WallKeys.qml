import QtQuick
import Tevrin

// The keys of the wall, except those of photo actions.
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

    // Returns false for other keys.
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
