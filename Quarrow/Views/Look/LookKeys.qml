import QtQuick
import Tevrin

// The keys of the quick look.
QtObject {
    id: keys

    required property LookStage stage

    signal closes
    signal togglesDetails

    readonly property var plain: ({
            [Qt.Key_Space]: () => closes(),
            [Qt.Key_Escape]: () => closes(),
            [Qt.Key_Left]: () => Wall.moveCurrent(-1),
            [Qt.Key_Up]: () => Wall.moveCurrent(-1),
            [Qt.Key_PageUp]: () => Wall.moveCurrent(-1),
            [Qt.Key_Right]: () => Wall.moveCurrent(1),
            [Qt.Key_Down]: () => Wall.moveCurrent(1),
            [Qt.Key_PageDown]: () => Wall.moveCurrent(1),
            [Qt.Key_Home]: () => Wall.moveCurrent(-Wall.count),
            [Qt.Key_End]: () => Wall.moveCurrent(Wall.count),
            [Qt.Key_Plus]: () => stage.zoom.step(1),
            [Qt.Key_Equal]: () => stage.zoom.step(1),
            [Qt.Key_Minus]: () => stage.zoom.step(-1),
            [Qt.Key_0]: () => stage.zoom.fit(),
            [Qt.Key_1]: () => stage.toggle(),
            [Qt.Key_I]: () => togglesDetails(),
            [Qt.Key_L]: () => rotate(Actions.Anticlockwise),
            [Qt.Key_R]: () => rotate(Actions.Clockwise),
            [Qt.Key_Delete]: () => Actions.trash(),
            [Qt.Key_Return]: () => Actions.open(),
            [Qt.Key_Enter]: () => Actions.open()
        })
    readonly property var shifted: ({
            [Qt.Key_Left]: () => stage.zoom.pan(Qt.point(96, 0)),
            [Qt.Key_Right]: () => stage.zoom.pan(Qt.point(-96, 0)),
            [Qt.Key_Up]: () => stage.zoom.pan(Qt.point(0, 96)),
            [Qt.Key_Down]: () => stage.zoom.pan(Qt.point(0, -96)),
            [Qt.Key_Plus]: () => stage.zoom.step(1)
        })

    function rotate(rotation) {
        if (Look.kind === Look.Picture && !Look.showsOriginal)
            Actions.rotate(rotation);
    }

    // Returns false for other keys.
    function press(event) {
        stage.ringed = event.key === Qt.Key_Tab || event.key === Qt.Key_Backtab;
        const modifiers = event.modifiers & ~Qt.KeypadModifier;
        const meant = modifiers === Qt.ShiftModifier ? shifted[event.key] : modifiers ? null : plain[event.key];
        if (meant)
            meant();
        return Boolean(meant);
    }
}
