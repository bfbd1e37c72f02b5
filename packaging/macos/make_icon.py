#!/usr/bin/env python3
"""Draws Quillmont.icns from the project's vector art, packaging/resources/quillmont.svg.

The art is laid on the rounded plate that icons have on a Mac and rendered anew for every size.
Needs rsvg-convert (Debian: librsvg2-bin) and convert (imagemagick). The result is kept beside this
script, so that building needs neither; run it again when the art changes.
"""
import pathlib
import re
import struct
import subprocess

HERE = pathlib.Path(__file__).resolve().parent
ART = HERE.parent / "resources" / "quillmont.svg"
ICON = HERE / "Quillmont.icns"

# Element types of the container, with their sizes in pixels. The two smallest hold bare pixels,
# since systems read no PNG there.
BARE = {b"ic04": 16, b"ic05": 32}
PNG = {b"ic07": 128, b"ic08": 256, b"ic09": 512, b"ic10": 1024,
       b"ic11": 32, b"ic12": 64, b"ic13": 256, b"ic14": 512}


def plate(art):
    """The art on its plate, as an icon's 1024 points prescribe it: 100 are left free around."""
    body = re.search(r"<svg[^>]*>(.*)</svg>", art, re.DOTALL).group(1)
    return f"""<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 1024 1024">
  <defs>
    <linearGradient id="plate" x2="0" y2="1">
      <stop offset="0" stop-color="#8ba0ba"/><stop offset="1" stop-color="#566a84"/>
    </linearGradient>
    <filter id="shadow" x="-10%" y="-10%" width="120%" height="125%">
      <feGaussianBlur stdDeviation="12"/>
    </filter>
  </defs>
  <rect x="100" y="112" width="824" height="824" rx="186" opacity=".35" filter="url(#shadow)"/>
  <rect x="100" y="100" width="824" height="824" rx="186" fill="url(#plate)"/>
  <g transform="translate(192 186) scale(5)">{body}</g>
</svg>"""


def render(svg, pixels):
    command = ["rsvg-convert", "-w", str(pixels), "-h", str(pixels)]
    return subprocess.run(command, input=svg.encode(), capture_output=True, check=True).stdout


def pack(channel):
    """Run lengths: 0..127 is a count of literal bytes less one, 128..255 a repetition less 125."""
    packed, literal, at = bytearray(), bytearray(), 0

    def flush():
        if literal:
            packed.append(len(literal) - 1)
            packed.extend(literal)
            literal.clear()

    while at < len(channel):
        run = 1
        while run < 130 and at + run < len(channel) and channel[at + run] == channel[at]:
            run += 1
        if run >= 3:
            flush()
            packed += bytes((run + 125, channel[at]))
        else:
            run = 1
            literal.append(channel[at])
            if len(literal) == 128:
                flush()
        at += run
    flush()
    return bytes(packed)


def bare_pixels(png):
    rgba = subprocess.run(["convert", "png:-", "-depth", "8", "rgba:-"], input=png,
                          capture_output=True, check=True).stdout
    return b"ARGB" + b"".join(pack(rgba[channel::4]) for channel in (3, 0, 1, 2))


def main():
    svg = plate(ART.read_text())
    elements = {kind: bare_pixels(render(svg, size)) for kind, size in BARE.items()}
    elements |= {kind: render(svg, size) for kind, size in PNG.items()}
    body = b"".join(kind + struct.pack(">I", 8 + len(data)) + data
                    for kind, data in sorted(elements.items()))
    ICON.write_bytes(b"icns" + struct.pack(">I", 8 + len(body)) + body)


if __name__ == "__main__":
    main()
