import QtQuick
import Tevrin

// Which of this computer's addresses the code carries; only there when there is a choice.
ComboBox {
    objectName: "addressPicker"
    name: qsTr("二维码使用的地址")
    visible: model.length > 0
    model: Phrases.addressChoices(Server.addresses, Shell.preferredInterface)
    value: Shell.preferredInterface
    onChosen: interfaceName => Shell.preferredInterface = interfaceName
}
