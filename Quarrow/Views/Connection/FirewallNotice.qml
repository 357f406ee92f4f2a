import Tevrin

// What blocks phones on this computer. Hidden once something was received.
Notice {
    visible: Server.firewallAdvice && Shell.receivedCount === 0
    text: Server.firewallAdvice
    command: Server.firewallCommand
}
