pragma Singleton
import QtQuick

// The look every view shares: an 8-point spacing grid, the palette (light or dark, following the
// system palette), corner radii and the four named animations.
QtObject {
    id: theme

    readonly property SystemPalette system: SystemPalette { colorGroup: SystemPalette.Active }
    readonly property bool dark: system.window.hslLightness < 0.5

    // Spacing grid
    readonly property int grid: 8
    readonly property int spacingSmall: grid / 2
    readonly property int spacing: grid
    readonly property int spacingLarge: grid * 2
    readonly property int spacingHuge: grid * 3

    readonly property int radiusSmall: 6
    readonly property int radiusCard: 12

    // Type
    readonly property string fontFamily: Qt.application.font.family
    readonly property int fontSizeBody: 13
    readonly property int fontSizeCaption: 11
    readonly property int fontSizeTitle: 22
    readonly property int fontSizeLargeTitle: 28

    // Palette
    readonly property color accent: dark ? "#0A84FF" : "#007AFF"
    readonly property color green: dark ? "#30D158" : "#28A745"
    readonly property color orange: dark ? "#FF9F0A" : "#F08A00"
    readonly property color red: dark ? "#FF453A" : "#E0352B"
    readonly property color windowBackground: dark ? "#1E1E1E" : "#FFFFFF"
    readonly property color sidebarBackground: dark ? "#262628" : "#F2F2F5"
    readonly property color cardBackground: dark ? "#2C2C2E" : "#F5F5F7"
    readonly property color selection: dark ? Qt.rgba(1, 1, 1, 0.10) : Qt.rgba(0, 0, 0, 0.07)
    readonly property color separator: dark ? Qt.rgba(1, 1, 1, 0.10) : Qt.rgba(0, 0, 0, 0.10)
    readonly property color textPrimary: dark ? "#F5F5F7" : "#1D1D1F"
    readonly property color textSecondary: dark ? "#A1A1A6" : "#6E6E73"

    // The named colours the models give categories, recommendations, tasks and app glyphs ("teal", "purple"…).
    function tint(name) {
        switch (name) {
        case "teal": return dark ? "#40C8E0" : "#30B0C7"
        case "gray": return dark ? "#98989D" : "#8E8E93"
        case "orange": return orange
        case "red": return red
        case "blue": return accent
        case "indigo": return dark ? "#5E5CE6" : "#5856D6"
        case "purple": return dark ? "#BF5AF2" : "#AF52DE"
        case "brown": return dark ? "#AC8E68" : "#A2845E"
        case "cyan": return dark ? "#64D2FF" : "#32ADE6"
        case "green": return green
        case "mint": return dark ? "#66D4CF" : "#00C7BE"
        case "yellow": return dark ? "#FFD60A" : "#E5B800"
        case "pink": return dark ? "#FF375F" : "#FF2D55"
        default: return accent
        }
    }

    // The colour of a tone named by the models ("accent", "success", "warning", "critical").
    function toneColor(tone) {
        return tone === "critical" ? red : tone === "warning" ? orange : tone === "success" ? green : accent
    }

    // Named animations: reflow for figures that change, snappyUI for pane switches, emphasis for
    // the toast, zoom for entering and leaving a folder of the map.
    readonly property QtObject reflow: QtObject {
        readonly property int duration: 450
        readonly property int easing: Easing.OutCubic
    }
    readonly property QtObject snappyUI: QtObject {
        readonly property int duration: 180
        readonly property int easing: Easing.OutQuad
    }
    readonly property QtObject emphasis: QtObject {
        readonly property int duration: 380
        readonly property int easing: Easing.OutBack
    }
    readonly property QtObject zoom: QtObject {
        readonly property int duration: 520
        readonly property int easing: Easing.InOutCubic
    }

    // Home screen and window shell
    readonly property int sidebarWidth: 232
    readonly property int homeMaxWidth: 760
    readonly property int diskRingSize: 148
    readonly property int diskRingLine: 14
    readonly property int iconTile: 36
    readonly property int sheetWidth: 460
    readonly property color badgeBackground: dark ? Qt.rgba(1, 1, 1, 0.14) : Qt.rgba(0, 0, 0, 0.08)

    // Space map
    readonly property color mapFrame: dark ? "#232325" : "#F7F7F9"
    readonly property color mapHover: dark ? "#FFFFFF" : "#1D1D1F"
    readonly property color mapInspectorBackground: dark ? "#242426" : "#FBFBFD"
    readonly property int mapInspectorWidth: 300
    // The part of a breakdown that its largest children leave: the system's gray.
    readonly property color mapRemainder: dark ? "#48484A" : "#D1D1D6"

    // Cleanup and apps screens
    readonly property int cleanRowHeight: 60
    readonly property int cleanItemRowHeight: 52
    readonly property int cleanIconTile: 32
    readonly property int appsListWidth: 320
    readonly property int appsRowHeight: 52
    readonly property int appsDetailIcon: 64
    readonly property color cautionBackground: dark ? Qt.rgba(1, 0.62, 0.04, 0.14) : Qt.rgba(0.94, 0.54, 0, 0.10)
    readonly property color tagBackground: dark ? Qt.rgba(1, 1, 1, 0.10) : Qt.rgba(0, 0, 0, 0.06)

    // Activity and performance screens
    readonly property int tableRowHeight: 44
    readonly property int appGlyphSize: 24
    readonly property int statValueSize: 24
    readonly property color rowHover: dark ? Qt.rgba(1, 1, 1, 0.05) : Qt.rgba(0, 0, 0, 0.035)
    readonly property color link: accent

    // Menu-bar panel
    readonly property int panelWidth: 320
    readonly property int panelRowHeight: 30
    readonly property color panelBackground: dark ? "#242426" : "#FBFBFD"
}
