import Tevrin

Notice {
    visible: Server.error
    text: Server.error
    grave: true
    dismissable: true
    onDismissed: Shell.dismissError()
}
