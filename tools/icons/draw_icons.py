#!/usr/bin/env python3
"""Draws the driver's pictures into resources/icons/: tools/icons/draw_icons.py. Needs pycairo (python3-cairo).

The runtime shows a status icon of 50 x 32 pixels for a headset and of 32 x 32 for any other device, and one of twice
that size, with @2x in its name, on dense displays. The picture of the controller is where its inputs are pointed at
when a player binds them; the points are in resources/input/controller_profile.json.
"""
import math
import pathlib
import sys

if {"-h", "--help"} & set(sys.argv[1:]):
    print(__doc__)
    sys.exit()

import cairo  # only now: help needs none

ICONS = pathlib.Path(__file__).resolve().parents[2] / "resources" / "icons"

GREY, BLUE, TEAL, AMBER, RED = (
    (0.55, 0.57, 0.60), (0.35, 0.60, 0.95), (0.20, 0.78, 0.68), (0.98, 0.72, 0.15), (0.92, 0.30, 0.28))
INK = (0.10, 0.12, 0.15)

# What a device's state looks like: colour, whether the shape is filled, the badge's colour if it has one.
STATES = {
    "off": (GREY, False, None),
    "searching": (BLUE, False, None),
    "searching_alert": (BLUE, False, AMBER),
    "ready": (TEAL, True, None),
    "ready_alert": (TEAL, True, AMBER),
    "error": (RED, True, None),
    "standby": (GREY, True, None),
    "low": (TEAL, True, RED),
}


def rounded(context, left, top, width, height, radius):
    """Adds a rounded rectangle to the path."""
    right, bottom = left + width, top + height
    context.new_sub_path()
    for x, y, start in ((right - radius, top + radius, -0.5), (right - radius, bottom - radius, 0.0),
                        (left + radius, bottom - radius, 0.5), (left + radius, top + radius, 1.0)):
        context.arc(x, y, radius, start * math.pi, (start + 0.5) * math.pi)
    context.close_path()


def headset(context):
    """A visor with its two lenses, in 50 x 32."""
    rounded(context, 6, 7, 38, 19, 6)
    yield
    for x in (16.5, 33.5):
        context.new_sub_path()
        context.arc(x, 16.5, 4.5, 0, 2 * math.pi)
    yield


def controller(context):
    """A wand with its round pad, in 32 x 32."""
    context.new_sub_path()
    context.arc(16, 9.5, 6.5, math.pi * 0.8, math.pi * 2.2)
    context.line_to(19.5, 28)
    context.arc(16, 27, 3.5, 0.1 * math.pi, 0.9 * math.pi)
    context.close_path()
    yield
    context.new_sub_path()
    context.arc(16, 9.5, 3, 0, 2 * math.pi)
    yield


def base_station(context):
    """A box with one large eye, in 32 x 32."""
    rounded(context, 6, 4, 20, 24, 4)
    yield
    context.new_sub_path()
    context.arc(16, 14, 6, 0, 2 * math.pi)
    yield


def canvas(width, height, scale):
    surface = cairo.ImageSurface(cairo.FORMAT_ARGB32, width * scale, height * scale)
    context = cairo.Context(surface)
    context.scale(scale, scale)
    return surface, context


def status_icon(name, shape, width, state, scale):
    """Draws one device in one state."""
    colour, filled, badge = STATES[state]
    surface, context = canvas(width, 32, scale)
    context.set_line_width(2)
    for is_detail, _ in enumerate(shape(context)):
        context.set_source_rgb(*(INK if is_detail and filled else colour))
        if filled:
            context.fill()
        else:
            context.stroke()
    if badge:
        context.arc(width - 6, 26, 5, 0, 2 * math.pi)
        context.set_source_rgb(*badge)
        context.fill()
    suffix = "" if scale == 1 else f"@{scale}x"
    surface.write_to_png(ICONS / f"{name}_{state}{suffix}.png")


def controller_diagram():
    """The controller seen from above, with everything that can be bound."""
    surface, context = canvas(512, 512, 1)
    context.move_to(200, 60)
    context.curve_to(120, 130, 150, 320, 196, 470)
    context.curve_to(210, 505, 302, 505, 316, 470)
    context.curve_to(362, 320, 392, 130, 312, 60)
    context.close_path()
    context.set_source_rgb(0.80, 0.82, 0.85)
    context.fill()
    context.set_source_rgb(*INK)
    for x, y, radius in ((256, 104, 20), (256, 238, 72), (256, 372, 24)):  # menu, trackpad, system
        context.arc(x, y, radius, 0, 2 * math.pi)
        context.fill()
    rounded(context, 336, 92, 32, 80, 16)  # trigger, on the far side
    rounded(context, 168, 392, 16, 56, 8)  # grip, on the side
    context.set_source_rgb(0.45, 0.48, 0.52)
    context.fill()
    surface.write_to_png(ICONS / "controller_diagram.png")


def main():
    ICONS.mkdir(parents=True, exist_ok=True)
    for name, shape, width in (("headset", headset, 50), ("controller", controller, 32),
                               ("base_station", base_station, 32)):
        for state in STATES:
            for scale in (1, 2):
                status_icon(name, shape, width, state, scale)
    controller_diagram()


if __name__ == "__main__":
    main()
