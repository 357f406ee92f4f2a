pragma Singleton

import QtQuick
import Tevrin

// The colours and sizes of all views. Light or dark and reduced motion follow the desktop.
QtObject {
    readonly property bool dark: Appearance.dark
    readonly property bool reducedMotion: Appearance.reducedMotion

    readonly property color background: dark ? "#161716" : "#F6F5F2"
    readonly property color surface: dark ? "#1F2120" : "#FFFFFF"
    readonly property color line: dark ? "#2E3130" : "#E4E2DD"
    readonly property color track: dark ? "#333735" : "#E9E7E2"
    readonly property color text: dark ? "#F2F2F0" : "#1D1D1F"
    readonly property color secondaryText: dark ? "#A0A29E" : "#6B6B70"
    readonly property color edge: dark ? "#7C807D" : "#8A8A86" // of controls: 3 : 1 against every ground
    readonly property color accent: dark ? "#3FB8A5" : "#0F7B6C"
    readonly property color accentPress: dark ? "#5CC9B8" : "#0C6558"
    readonly property color accentTint: dark ? "#1C322E" : "#E3F0ED"
    readonly property color textOnAccent: dark ? "#0A1F1B" : "#FFFFFF"
    readonly property color success: dark ? "#5DBB85" : "#2B7A4B"
    readonly property color successTint: dark ? "#1D2E25" : "#E6F2EA"
    readonly property color warning: dark ? "#D9A441" : "#9A6412"
    readonly property color warningTint: dark ? "#30291B" : "#FAF1DF"
    readonly property color danger: dark ? "#E5776B" : "#B3372B"
    readonly property color dangerTint: dark ? "#352322" : "#FBEBE8"
    readonly property color textOnDanger: dark ? "#2A0F0C" : "#FFFFFF"
    readonly property color scrim: dark ? "#99000000" : "#4D1D1D1F"
    readonly property var artwork: ({
            card: dark ? "#2A2D2B" : "#FFFFFF",
            line: line,
            sky: dark ? "#22332F" : "#DCEBE7",
            sun: dark ? "#C99A47" : "#E8B65A",
            far: dark ? "#2F5F57" : "#8FC1B7",
            near: dark ? "#3A8679" : "#2F8E80"
        })

    readonly property int caption: 12
    readonly property int body: 13
    readonly property int title: 20
    readonly property int hero: 28

    readonly property int radiusControl: 8
    readonly property int radiusCard: 12
    readonly property int radiusSheet: 16

    readonly property int motion: reducedMotion ? 0 : 150
}
