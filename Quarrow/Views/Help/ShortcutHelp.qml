import QtQuick
import QtQuick.Layouts
import Tevrin

// Uploads from the iPhone's shortcuts, step by step.
Section {
    title: qsTr("iPhone 快捷指令")

    Label {
        text: qsTr("做好一次，以后在照片里点“共享”就能传，不用扫码。")
        secondary: true
        Layout.fillWidth: true
    }
    HelpItem {
        sign: "1"
        text: qsTr("在“快捷指令”App 里新建一个，在它的详细信息里打开“在共享表单中显示”。")
    }
    HelpItem {
        sign: "2"
        text: qsTr("添加操作“获取 URL 内容”，URL 填：")

        UploadAddress {
            Layout.fillWidth: true
            Layout.topMargin: 4
        }
    }
    HelpItem {
        sign: "3"
        text: qsTr("展开这个操作：方法选 POST，请求体选“文件”，文件选“快捷指令输入”。")
    }
    HelpItem {
        sign: "4"
        text: qsTr("在照片里选一张照片，点“共享”，再点这个快捷指令。要一次传多张，把操作放进“对每一项重复”，文件改选“重复项”。")
    }
    Label {
        text: qsTr("重置密钥或电脑换了地址以后，要把新的地址填进去。")
        secondary: true
        font.pixelSize: Theme.caption
        Layout.fillWidth: true
    }
}
