import QtQuick
import Tevrin

// Selects which of this computer's addresses the code contains; visible only if there are several.
ComboBox {
    objectName: "addressPicker"
    name: qsTr("二维码使用的地址")
    visible: model.length > 0
    model: Phrases.addressChoices(Server.addresses, Shell.preferredInterface)
    value: Shell.preferredInterface
    onChosen: interfaceName => Shell.preferredInterface = interfaceName
}
