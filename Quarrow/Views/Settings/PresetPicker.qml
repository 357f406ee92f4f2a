import QtQuick
import QtQuick.Layouts
import Tevrin

// Presets with simple names; changing a single field leaves the preset.
ColumnLayout {
    id: picker

    readonly property ImagingForm imaging: Settings.imaging

    spacing: 8

    Label {
        text: qsTr("怎么处理照片")
        font.weight: Font.DemiBold
        Layout.leftMargin: 4
        Layout.fillWidth: true
        Accessible.role: Accessible.Heading
    }
    GridLayout {
        columns: width < 440 ? 1 : 2
        columnSpacing: 12
        rowSpacing: 12
        Layout.fillWidth: true

        Repeater {
            objectName: "presets"
            model: picker.imaging.presets

            // qmllint disable unqualified
            PresetCard {
                required property var modelData

                text: modelData.text
                detail: modelData.detail
                checked: picker.imaging.preset === modelData.value
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: 1
                onClicked: picker.imaging.preset = modelData.value
            }
            // qmllint enable unqualified
        }
    }
    Label {
        visible: picker.imaging.preset === "own"
        text: qsTr("现在是自定义：下面的设置由你自己定。选上面任意一项可以回到现成的组合。")
        secondary: true
        font.pixelSize: Theme.caption
        Layout.leftMargin: 4
        Layout.fillWidth: true
    }
}
