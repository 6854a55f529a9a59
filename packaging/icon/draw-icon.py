#!/usr/bin/env python3
"""Draws Nubo's application icon: a white cloud on a blue rounded square, the shape of a Mac app
icon. Everything is computed here from a few circles and rounded shapes (signed distances, one
pixel of edge smoothing), so the icon has no image source to keep and renders crisp at every size.

    draw-icon.py --iconset Nubo.iconset    the files iconutil turns into Nubo.icns
    draw-icon.py --size 1024 --output icon.png
    draw-icon.py --theme DIR --name ID     a Linux icon theme's sizes, DIR/<N>x<N>/apps/ID.png
                                           and DIR/scalable/apps/ID.svg, the same shapes in SVG

Only the standard library is used, so the build needs nothing beyond the system's python3.
"""

import argparse
import math
import os
import struct
import sys
import zlib

# The drawing lives on a 1024-unit canvas. The body follows the Mac icon grid: an 824-unit
# square with rounded corners, centred, leaving room for its shadow.
CANVAS = 1024.0
BODY_CENTRE = (512.0, 512.0)
BODY_HALF = 412.0
BODY_RADIUS = 185.0
SHADOW_OFFSET = 14.0
SHADOW_SOFTNESS = 26.0
SHADOW_ALPHA = 0.30
SKY_TOP = (96, 178, 255)
SKY_BOTTOM = (24, 88, 210)
CLOUD_TOP = (255, 255, 255)
CLOUD_BOTTOM = (214, 230, 252)
# The cloud: a capsule for its base with three bumps on top, centred on the body.
CLOUD_BASE = ((372.0, 620.0), (652.0, 620.0), 84.0)
CLOUD_BUMPS = (((372.0, 578.0), 104.0), ((506.0, 486.0), 152.0), ((654.0, 562.0), 112.0))
CLOUD_SPAN = (334.0, 704.0)

# The names iconutil expects inside an .iconset folder, with the pixel size of each.
ICONSET = (
    ("icon_16x16.png", 16), ("icon_16x16@2x.png", 32),
    ("icon_32x32.png", 32), ("icon_32x32@2x.png", 64),
    ("icon_128x128.png", 128), ("icon_128x128@2x.png", 256),
    ("icon_256x256.png", 256), ("icon_256x256@2x.png", 512),
    ("icon_512x512.png", 512), ("icon_512x512@2x.png", 1024),
)


# The sizes a Linux icon theme holds for an application.
THEME_SIZES = (16, 22, 24, 32, 48, 64, 128, 256, 512)


def rounded_square(x, y):
    qx = abs(x - BODY_CENTRE[0]) - (BODY_HALF - BODY_RADIUS)
    qy = abs(y - BODY_CENTRE[1]) - (BODY_HALF - BODY_RADIUS)
    outside = math.hypot(max(qx, 0.0), max(qy, 0.0))
    return outside + min(max(qx, qy), 0.0) - BODY_RADIUS


def cloud(x, y):
    (ax, ay), (bx, by), radius = CLOUD_BASE
    t = min(max((x - ax) / (bx - ax), 0.0), 1.0)
    distance = math.hypot(x - (ax + t * (bx - ax)), y - (ay + t * (by - ay))) - radius
    for (cx, cy), r in CLOUD_BUMPS:
        distance = min(distance, math.hypot(x - cx, y - cy) - r)
    return distance


def coverage(distance, unit):
    """How much of a pixel `unit` canvas units wide a shape covers at this signed distance."""
    return min(max(0.5 - distance / unit, 0.0), 1.0)


def mix(a, b, t):
    return tuple(a[i] + (b[i] - a[i]) * t for i in range(3))


def over(dst, colour, alpha):
    """Straight-alpha source-over of one colour onto an (r, g, b, a) pixel."""
    r, g, b, a = dst
    out = alpha + a * (1.0 - alpha)
    if out <= 0.0:
        return (0.0, 0.0, 0.0, 0.0)
    keep = a * (1.0 - alpha)
    return (
        (colour[0] * alpha + r * keep) / out,
        (colour[1] * alpha + g * keep) / out,
        (colour[2] * alpha + b * keep) / out,
        out,
    )


def render(size):
    """Rows of RGBA bytes for a square icon of `size` pixels."""
    unit = CANVAS / size
    rows = []
    for row in range(size):
        y = (row + 0.5) * unit
        line = bytearray()
        sky = mix(SKY_TOP, SKY_BOTTOM, min(max((y - 100.0) / 824.0, 0.0), 1.0))
        cloud_colour = mix(CLOUD_TOP, CLOUD_BOTTOM, min(max((y - CLOUD_SPAN[0]) / (CLOUD_SPAN[1] - CLOUD_SPAN[0]), 0.0), 1.0))
        for column in range(size):
            x = (column + 0.5) * unit
            pixel = (0.0, 0.0, 0.0, 0.0)
            shadow = rounded_square(x, y - SHADOW_OFFSET)
            if shadow < SHADOW_SOFTNESS:
                fade = min(max(0.5 - shadow / SHADOW_SOFTNESS, 0.0), 1.0)
                pixel = over(pixel, (0, 0, 0), SHADOW_ALPHA * fade * fade)
            body = coverage(rounded_square(x, y), unit)
            if body > 0.0:
                pixel = over(pixel, sky, body)
                puff = coverage(cloud(x, y), unit) * body
                if puff > 0.0:
                    pixel = over(pixel, cloud_colour, puff)
            line += bytes((round(pixel[0]), round(pixel[1]), round(pixel[2]), round(pixel[3] * 255.0)))
        rows.append(bytes(line))
    return rows


def png(size, rows):
    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)

    header = struct.pack(">IIBBBBB", size, size, 8, 6, 0, 0, 0)  # 8-bit RGBA, no interlace
    raw = b"".join(b"\x00" + row for row in rows)  # filter type 0 on every row
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b"")


def svg():
    """The same drawing as vector shapes: the body, its soft shadow and the cloud."""
    (ax, ay), (bx, by), base = CLOUD_BASE
    left = BODY_CENTRE[0] - BODY_HALF
    top = BODY_CENTRE[1] - BODY_HALF
    side = 2 * BODY_HALF

    def rgb(colour):
        return "#%02x%02x%02x" % colour

    bumps = "".join(
        f'<circle cx="{cx:g}" cy="{cy:g}" r="{r:g}"/>' for (cx, cy), r in CLOUD_BUMPS)
    return f"""<svg xmlns="http://www.w3.org/2000/svg" width="{CANVAS:g}" height="{CANVAS:g}" viewBox="0 0 {CANVAS:g} {CANVAS:g}">
<defs>
<linearGradient id="sky" x1="0" y1="{top:g}" x2="0" y2="{top + side:g}" gradientUnits="userSpaceOnUse"><stop offset="0" stop-color="{rgb(SKY_TOP)}"/><stop offset="1" stop-color="{rgb(SKY_BOTTOM)}"/></linearGradient>
<linearGradient id="cloud" x1="0" y1="{CLOUD_SPAN[0]:g}" x2="0" y2="{CLOUD_SPAN[1]:g}" gradientUnits="userSpaceOnUse"><stop offset="0" stop-color="{rgb(CLOUD_TOP)}"/><stop offset="1" stop-color="{rgb(CLOUD_BOTTOM)}"/></linearGradient>
<filter id="soft" x="-10%" y="-10%" width="120%" height="120%"><feGaussianBlur stdDeviation="{SHADOW_SOFTNESS / 2:g}"/></filter>
</defs>
<rect x="{left:g}" y="{top + SHADOW_OFFSET:g}" width="{side:g}" height="{side:g}" rx="{BODY_RADIUS:g}" fill="#000" fill-opacity="{SHADOW_ALPHA:g}" filter="url(#soft)"/>
<rect x="{left:g}" y="{top:g}" width="{side:g}" height="{side:g}" rx="{BODY_RADIUS:g}" fill="url(#sky)"/>
<g fill="url(#cloud)"><rect x="{ax - base:g}" y="{ay - base:g}" width="{bx - ax + 2 * base:g}" height="{2 * base:g}" rx="{base:g}"/>{bumps}</g>
</svg>
""".encode()


def write(path, data):
    temporary = path + ".part"
    with open(temporary, "wb") as out:
        out.write(data)
    os.replace(temporary, path)


def main(argv):
    parser = argparse.ArgumentParser(description="Draws the Nubo application icon.")
    parser.add_argument("--iconset", help="folder to fill with the sizes iconutil expects")
    parser.add_argument("--size", type=int, default=1024, help="pixel size of a single PNG")
    parser.add_argument("--output", help="path of a single PNG")
    parser.add_argument("--theme", help="icon theme folder to fill (hicolor layout)")
    parser.add_argument("--name", default="nubo", help="the icon's name in the theme")
    options = parser.parse_args(argv)
    if not options.iconset and not options.output and not options.theme:
        parser.error("give --iconset, --output or --theme")
    if options.size < 1 or options.size > 4096:
        parser.error("--size must be between 1 and 4096")

    if options.output:
        write(options.output, png(options.size, render(options.size)))
    if options.iconset:
        os.makedirs(options.iconset, exist_ok=True)
        drawn = {}
        for name, size in ICONSET:
            if size not in drawn:
                drawn[size] = png(size, render(size))
            write(os.path.join(options.iconset, name), drawn[size])
    if options.theme:
        for size in THEME_SIZES:
            folder = os.path.join(options.theme, f"{size}x{size}", "apps")
            os.makedirs(folder, exist_ok=True)
            write(os.path.join(folder, options.name + ".png"), png(size, render(size)))
        folder = os.path.join(options.theme, "scalable", "apps")
        os.makedirs(folder, exist_ok=True)
        write(os.path.join(folder, options.name + ".svg"), svg())
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
