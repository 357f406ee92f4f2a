import QtQuick
import Tevrin

// An integer with its unit, typed or stepped with the arrow keys. A number outside the bounds is clamped, or
// passed on unchanged if the owner `explains` errors.
TextField {
    id: box

    property real number
    property real from: 0
    property real to: Limits.HighestStart
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
