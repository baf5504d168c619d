#!/usr/bin/env python3
"""Draws plots to files and checks their first bytes: plot_images.py VEX

Exits with 77 if the module that draws PNG and PDF was not built.
"""

import os
import pathlib
import struct
import subprocess
import sys
import tempfile
import xml.dom.minidom

# The font library keeps its results until the process ends, which is not a leak.
ENVIRONMENT = {**os.environ, "ASAN_OPTIONS": "detect_leaks=0"}


def main():
    vex = pathlib.Path(sys.argv[1]).resolve()

    def run(*words):
        return subprocess.run([vex, *words], cwd=folder, env=ENVIRONMENT, capture_output=True, text=True)

    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        run("simulate", "run.vex", "--melt", "20").check_returncode()
        run("plot", "run.vex", "-o", "plot.svg").check_returncode()
        lines = xml.dom.minidom.parse(str(folder / "plot.svg")).getElementsByTagName("polyline")
        assert len(lines) == 96, f"{len(lines)} curves in the SVG"
        libraries = subprocess.run(["ldd", vex], capture_output=True, text=True, check=True).stdout
        assert "librsvg" not in libraries, "every command loads librsvg"
        drawn = run("plot", "run.vex", "-o", "plot.png")
        if "librsvg2-dev" in drawn.stderr:
            print("skipped: the module that draws PNG and PDF was not built")
            return 77
        drawn.check_returncode()
        png = (folder / "plot.png").read_bytes()
        assert png.startswith(b"\x89PNG\r\n\x1a\n"), png[:8]
        assert struct.unpack(">II", png[16:24]) == (1920, 1200), png[16:24]
        run("plot", "run.vex", "-o", "plot.pdf").check_returncode()
        assert (folder / "plot.pdf").read_bytes().startswith(b"%PDF-")
    print("the plots are pictures")
    return 0


if __name__ == "__main__":
    sys.exit(main())
