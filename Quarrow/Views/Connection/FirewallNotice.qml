import Tevrin

// What stands in the way of phones on this computer. Once something was received, nothing does.
Notice {
    visible: Server.firewallAdvice && Shell.receivedCount === 0
    text: Server.firewallAdvice
    command: Server.firewallCommand
}
