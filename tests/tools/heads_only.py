#!/usr/bin/env python3
"""Checks that commands that show no readings do not read them: their memory must not depend on the
length of the run.

usage: heads_only.py VEX
"""

import os
import subprocess
import sys
import tempfile

COMMANDS = (["info"], ["info", "--json"], ["tree"], ["tree", "--json"], ["wells"], ["wells", "--csv"],
            ["detectors"], ["dyes"], ["calibration"], ["get", "frames"])
FRAME_BYTES = 96 * 80
MORE_FRAMES = 26_000  # about 200 MB, a hole in the file
MOST_MORE_KILOBYTES = 32 * 1024


def lengthened(source, target):
    """Copies the document and adds frames of zeros at the end of its last record."""
    with open(source, "rb") as file:
        data = bytearray(file.read())
    block = data.rindex(b"RAWa")
    length = int.from_bytes(data[block + 4:block + 8], "big") + MORE_FRAMES * FRAME_BYTES
    data[block + 4:block + 8] = length.to_bytes(4, "big")
    with open(target, "wb") as file:
        file.write(data)
        file.truncate(len(data) + MORE_FRAMES * FRAME_BYTES)


def memory(vex, command, document):
    """The peak memory of the command in kilobytes."""
    with subprocess.Popen([vex, command[0], document, *command[1:]],
                          stdout=subprocess.DEVNULL) as process:
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        sys.exit(f"{' '.join(command)}: exit code {process.returncode}")
    return usage.ru_maxrss


def main(vex):
    faults = 0
    with tempfile.TemporaryDirectory() as folder:
        short = os.path.join(folder, "short.vex")
        long = os.path.join(folder, "long.vex")
        subprocess.run([vex, "simulate", short, "--cycles", "2"], check=True)
        lengthened(short, long)
        for command in COMMANDS:
            more = memory(vex, command, long) - memory(vex, command, short)
            if more > MOST_MORE_KILOBYTES:
                print(f"{' '.join(command)}: {more} kB more for {MORE_FRAMES} more frames")
                faults += 1
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
