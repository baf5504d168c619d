#!/usr/bin/env python3
"""Kills the recording example in the middle of a run and starts it again, until the run is done.

usage: kill_example.py RECORD_WITH_LAB

The example prints the number of frames that are in the document after each Append. What it has
printed before it is killed must still be there when it is started again.
"""

import os
import subprocess
import sys
import tempfile

FRAMES = 40
KILLS = (0, 1, 2, 7, 20, 39)  # the number of frames at which the example is killed


def record(program, document, kill_at):
    """Runs the example and kills it once it has printed `kill_at`. Returns what it printed and how
    it ended."""
    printed = []
    with subprocess.Popen([program, document], stdout=subprocess.PIPE, text=True) as process:
        if kill_at == 0:
            process.kill()
        for line in process.stdout:
            printed.append(int(line))
            if printed[-1] == kill_at:
                process.kill()
    return printed, process.returncode


def main(program):
    recorded = 0
    with tempfile.TemporaryDirectory() as folder:
        document = os.path.join(folder, "run.vex")
        for kill_at in (*KILLS, None):
            printed, code = record(program, document, kill_at)
            # Frames that were appended after the last line that was read also count.
            if printed and (printed != list(range(printed[0], printed[-1] + 1))
                            or printed[0] <= recorded):
                sys.exit(f"{recorded} frames were recorded, then it went on with {printed}")
            recorded = max([recorded, *printed])
            if kill_at is None and (code != 0 or recorded != FRAMES):
                sys.exit(f"ended with {code} after {recorded} of {FRAMES} frames")
        printed, code = record(program, document, None)
        if printed or code != 0:
            sys.exit(f"the finished run was recorded again: {printed}, {code}")
    print(f"{FRAMES} frames are there after {len(KILLS)} kills")


if __name__ == "__main__":
    main(*sys.argv[1:])
