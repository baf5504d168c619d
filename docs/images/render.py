#!/usr/bin/env python3
"""Draws the terminal output of a program as SVG, with its colours.

usage: render.py TITLE [WORD...] <captured.txt >picture.svg

With WORDS, draws only the steps of a script whose headings ("== ...") contain one of them.
The picture of the README was made so:

    script -qec 'stty cols 90; scripts/demo' demo.txt
    docs/images/render.py 'A run, cut off and continued' continued curves <demo.txt >demo.svg
"""

import re
import sys
import unicodedata
from xml.sax.saxutils import escape

WIDE, HIGH, MARGIN, BAR = 8.4, 18, 16, 34
PAPER, INK = "#0d1117", "#d6dde6"
COLOURS = ("#484f58", "#ff7b72", "#56d364", "#e3b341", "#79c0ff", "#d2a8ff", "#56d4dd", "#b1bac4")
SEQUENCE = re.compile(r"\x1b\[([0-9;?]*)([A-Za-z])")


def style_after(style, codes):
    """The colour, bold and dim that one escape sequence sets."""
    for code in (int(code or 0) for code in codes.split(";")):
        if code == 0:
            style = (INK, False, False)
        elif code == 1:
            style = (style[0], True, style[2])
        elif code == 2:
            style = (style[0], style[1], True)
        elif code in (22, 39):
            style = (INK, False, False) if code == 39 else (style[0], False, False)
        elif 30 <= code <= 37 or 90 <= code <= 97:
            style = (COLOURS[code % 10], style[1], style[2])
    return style


def pieces(line, style):
    """Column, text and style of each part of a line, and the style at its end."""
    found, column, at = [], 0, 0

    def put(text):
        nonlocal column
        if text:
            found.append((column, text, style))
            column += sum(2 if unicodedata.east_asian_width(c) in "WF" else 1 for c in text)

    for sequence in SEQUENCE.finditer(line):
        put(line[at:sequence.start()])
        if sequence[2] == "m":
            style = style_after(style, sequence[1])
        at = sequence.end()
    put(line[at:])
    return found, style


def screen(text):
    """The lines as they were at the end: text before a carriage return is overwritten."""
    lines = text.replace("\r\n", "\n").split("\n")
    return [line.rstrip("\r").split("\r")[-1] for line in lines]


def kept(text):
    """SVG keeps only non-breaking spaces."""
    return escape(text).replace(" ", "\u00a0")


def svg(lines, title):
    plain = [SEQUENCE.sub("", line) for line in lines]
    width = MARGIN * 2 + WIDE * max(map(len, plain))
    height = BAR + MARGIN + HIGH * len(lines)
    yield (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width:.0f} {height}" '
           f'width="{width:.0f}" height="{height}" role="img" aria-label="{escape(title)}">')
    yield f"<title>{escape(title)}</title>"
    yield f'<rect width="100%" height="100%" rx="8" fill="{PAPER}"/>'
    yield (f'<g font-family="DejaVu Sans Mono, Menlo, Consolas, monospace" font-size="14" '
           f'fill="{INK}">')
    for number, colour in enumerate(("#ff5f57", "#febc2e", "#28c840")):
        yield f'<circle cx="{MARGIN + 4 + 20 * number}" cy="17" r="6" fill="{colour}"/>'
    style = (INK, False, False)
    for number, line in enumerate(lines):
        found, style = pieces(line, style)
        for column, text, (colour, bold, dim) in found:
            if not text.strip():
                continue
            look = f' fill="{colour}"' if colour != INK else ""
            look += ' font-weight="bold"' if bold else ""
            look += ' opacity="0.6"' if dim else ""
            yield (f'<text x="{MARGIN + WIDE * column:.1f}" y="{BAR + HIGH * (number + 1) - 4}" '
                   f'textLength="{WIDE * len(text):.1f}"{look}>{kept(text)}</text>')
    yield "</g></svg>"


def steps(lines, words):
    """The headings that contain one of the words, with the lines below them."""
    chosen = False
    for line in lines:
        plain = SEQUENCE.sub("", line)
        if plain.startswith("Script done"):
            return
        if plain.startswith("== "):
            chosen = any(word in plain for word in words)
        if chosen:
            yield line


def main():
    lines = screen(sys.stdin.read())
    if len(sys.argv) > 2:
        lines = list(steps(lines, sys.argv[2:]))
    while lines and not SEQUENCE.sub("", lines[-1]).strip():
        lines.pop()
    print("\n".join(svg(lines, sys.argv[1])))


if __name__ == "__main__":
    main()
