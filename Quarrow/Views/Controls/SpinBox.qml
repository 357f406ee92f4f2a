import QtQuick
import Tevrin

// A whole number to be typed, with its unit; the arrow keys step. A number out of bounds is brought within them,
// or handed over as it is to an owner who `explains`.
TextField {
    id: box

    property real number
    property real from: 0
    property real to: 999999999
    property real step: 1
    property bool explains: false

    signal entered(real number)

    function enter(typed) {
        const wanted = explains ? typed : Math.max(from, Math.min(typed, to));
        if (wanted !== number || error)
            entered(wanted);
        follow();
    }
    function stepBy(by) {
        const now = text === "" ? number : Number(text);
        enter(Math.max(from, Math.min(Math.round((now + by) / step) * step, to)));
    }

    implicitWidth: 112
    value: String(number)
    pause: -1
    maximumLength: 9
    horizontalAlignment: TextInput.AlignRight
    inputMethodHints: Qt.ImhDigitsOnly
    validator: RegularExpressionValidator {
        regularExpression: /[0-9]*/
    }
    onTaken: text => text === "" ? revert() : enter(Number(text))
    Keys.onUpPressed: stepBy(step)
    Keys.onDownPressed: stepBy(-step)
}
