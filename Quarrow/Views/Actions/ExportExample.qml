import QtQuick
import QtQuick.Layouts
import Tevrin

// The effect on the first photo.
Rectangle {
    id: example

    required property ExportForm form

    implicitHeight: row.implicitHeight + 24
    radius: Theme.radiusControl
    color: Theme.accentTint

    RowLayout {
        id: row

        anchors.fill: parent
        anchors.margins: 12
        spacing: 12

        Icon {
            name: "image"
            color: Theme.accent
            Layout.preferredWidth: 20
            Layout.preferredHeight: 20
        }
        ColumnLayout {
            spacing: 2

            Label {
                text: example.form.example || qsTr("正在看第一张…")
                secondary: true
                font.pixelSize: Theme.caption
                wrapMode: Text.NoWrap
                elide: Text.ElideMiddle
                Layout.fillWidth: true
            }
            Label {
                text: example.form.exampleCopy ? qsTr("→ %1").arg(example.form.exampleCopy) : " "
                wrapMode: Text.NoWrap
                elide: Text.ElideMiddle
                Layout.fillWidth: true
            }
        }
    }
}
