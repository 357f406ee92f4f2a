import QtQuick
import QtQuick.Layouts
import Tevrin

Section {
    id: section

    readonly property ImagingForm imaging: Settings.imaging

    title: qsTr("尺寸和大小")

    ToggleRow {
        objectName: "limitsPixels"
        text: qsTr("缩小大照片")
        detail: section.imaging.pixelsMeaning
        checked: section.imaging.limitsPixels
        Layout.fillWidth: true
        onToggled: section.imaging.limitsPixels = checked
    }
    SettingRow {
        visible: section.imaging.limitsPixels
        text: qsTr("长边最多")

        SpinBox {
            objectName: "maxPixels"
            name: qsTr("长边最多，像素")
            detail: section.imaging.pixelsMeaning
            implicitWidth: 128
            unit: qsTr("像素")
            from: Limits.FewestPixels
            to: Limits.MostPixels
            step: 64
            number: section.imaging.maxPixels
            onEntered: number => section.imaging.maxPixels = number
        }
    }
    Separator {}
    ToggleRow {
        objectName: "limitsBytes"
        text: qsTr("限制每张照片的大小")
        detail: checked ? qsTr("先降质量，再缩尺寸，直到放得下") : qsTr("文件多大由尺寸和质量决定")
        checked: section.imaging.limitsBytes
        Layout.fillWidth: true
        onToggled: section.imaging.limitsBytes = checked
    }
    SettingRow {
        visible: section.imaging.limitsBytes
        text: qsTr("每张最大")

        SpinBox {
            objectName: "maxKilobytes"
            name: qsTr("每张最大，KB")
            implicitWidth: 128
            unit: qsTr("KB")
            from: Limits.FewestKilobytes
            to: Limits.MostKilobytes
            step: 100
            number: section.imaging.maxKilobytes
            onEntered: number => section.imaging.maxKilobytes = number
        }
    }
}
