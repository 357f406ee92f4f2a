import QtQuick
import QtQuick.Layouts
import Tevrin

// A number to choose from presets or to type.
RowLayout {
    id: row

    property string name
    property string unit
    required property real least
    required property real most
    property real usual: 0 // suggested to users who want to type one
    property var presets: []
    property real number
    readonly property bool free: wanted || presets.every(each => each.value !== number)
    property bool wanted: false // the user is about to type one

    signal entered(real number)

    spacing: 8

    SpinBox {
        objectName: "typed"
        visible: row.free
        name: row.name
        unit: row.unit
        implicitWidth: 128
        from: row.least
        to: row.most
        number: row.number
        onEntered: number => row.entered(number)
    }
    ComboBox {
        name: row.name
        model: row.presets.concat([{
                    text: qsTr("自定"),
                    value: -1
                }])
        value: row.free ? -1 : row.number
        onChosen: value => {
            row.wanted = value === -1;
            if (!row.wanted)
                row.entered(value);
            else if (row.number === 0)
                row.entered(row.usual);
        }
    }
}
