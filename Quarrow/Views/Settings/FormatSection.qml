import QtQuick
import Tevrin

Section {
    id: section

    readonly property ImagingForm imaging: Settings.imaging

    title: qsTr("格式和质量")

    SettingRow {
        text: qsTr("格式")
        detail: section.imaging.formatMeaning

        ComboBox {
            objectName: "format"
            name: qsTr("格式")
            implicitWidth: 180
            model: section.imaging.formats
            value: section.imaging.format
            onChosen: format => section.imaging.format = format
        }
    }
    Separator {}
    SettingRow {
        text: qsTr("质量")
        detail: section.imaging.format === "png" ? qsTr("PNG 不损失画质，用不到这一项") : qsTr("越低文件越小，低于 60 看得出来")

        Slider {
            objectName: "quality"
            name: qsTr("质量")
            enabled: section.imaging.format !== "png"
            implicitWidth: 240
            from: Limits.LowestQuality
            to: Limits.HighestQuality
            stepSize: 5
            value: section.imaging.quality
            valueText: section.imaging.qualityWords
            valueWidth: 60
            onMoved: section.imaging.quality = value
        }
    }
    SettingRow {
        visible: section.imaging.limitsBytes
        text: qsTr("最低质量")
        detail: qsTr("为了不超过限制，质量最多降到这里，再往下就缩尺寸")

        Slider {
            objectName: "qualityFloor"
            name: qsTr("最低质量")
            enabled: section.imaging.format !== "png"
            implicitWidth: 240
            from: Limits.LowestQualityFloor
            to: section.imaging.quality
            stepSize: 5
            value: section.imaging.qualityFloor
            valueText: section.imaging.qualityFloorWords
            valueWidth: 60
            onMoved: section.imaging.qualityFloor = value
        }
    }
}
