import QtQuick

// The one sign that work is under way, on every pane: a quarter of a ring turning over a faint
// full ring, drawn crisply at any size in the theme's colours.
Item {
    id: spinner

    property bool running: visible
    property color tint: Theme.accent

    implicitWidth: 18
    implicitHeight: 18
    onTintChanged: ring.requestPaint()

    Canvas {
        id: ring
        anchors.fill: parent
        antialiasing: true
        onWidthChanged: requestPaint()
        onHeightChanged: requestPaint()
        onPaint: {
            const context = getContext("2d");
            context.reset();
            const stroke = Math.max(1.5, Math.min(width, height) / 9);
            const radius = Math.min(width, height) / 2 - stroke;
            context.lineWidth = stroke;
            context.lineCap = "round";
            context.strokeStyle = Qt.rgba(spinner.tint.r, spinner.tint.g, spinner.tint.b, 0.2);
            context.beginPath();
            context.arc(width / 2, height / 2, radius, 0, 2 * Math.PI);
            context.stroke();
            context.strokeStyle = spinner.tint;
            context.beginPath();
            context.arc(width / 2, height / 2, radius, -Math.PI / 2, 0);
            context.stroke();
        }
        RotationAnimator on rotation {
            from: 0
            to: 360
            duration: 900
            loops: Animation.Infinite
            running: spinner.running
        }
    }
}
