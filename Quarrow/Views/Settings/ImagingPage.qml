import QtQuick
import QtQuick.Layouts
import Tevrin

ScrollPage {
    id: page

    readonly property ImagingForm imaging: Settings.imaging

    widest: 640
    spacing: 24

    ExampleCard {
        Layout.fillWidth: true
    }
    PresetPicker {
        Layout.fillWidth: true
    }
    SizeSection {
        Layout.fillWidth: true
    }
    FormatSection {
        Layout.fillWidth: true
    }
    Section {
        title: qsTr("照片里的信息")

        ToggleRow {
            objectName: "stripLocation"
            text: qsTr("去掉拍摄位置")
            detail: qsTr("别人看不到照片是在哪里拍的")
            checked: page.imaging.stripLocation
            Layout.fillWidth: true
            onToggled: page.imaging.stripLocation = checked
        }
        Separator {}
        ToggleRow {
            objectName: "stripAllMetadata"
            text: qsTr("去掉全部拍摄信息")
            detail: qsTr("相机、时间、位置、说明都不留，只留画面")
            checked: page.imaging.stripAllMetadata
            Layout.fillWidth: true
            onToggled: page.imaging.stripAllMetadata = checked
        }
    }
    Section {
        title: qsTr("原图")

        ToggleRow {
            objectName: "keepOriginal"
            text: qsTr("处理过的照片保留原图")
            detail: checked ? qsTr("手机传来的原图移到 originals 文件夹，多占一份空间") : qsTr("只留处理后的照片，手机上的不受影响")
            checked: page.imaging.keepOriginal
            Layout.fillWidth: true
            onToggled: page.imaging.keepOriginal = checked
        }
    }
}
