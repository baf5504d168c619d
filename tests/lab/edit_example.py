#!/usr/bin/env python3
"""Records a run with one example, edits it with another, damages it, and repairs and recovers it
with a third one.

usage: edit_example.py RECORD_WITH_LAB EDIT_LAB RECOVER_LAB
"""

import os
import subprocess
import sys
import tempfile

FRAMES = 40


def run(*command):
    """Runs the example. Returns its output and its exit code."""
    done = subprocess.run(command, stdout=subprocess.PIPE, text=True, check=False)
    return done.stdout, done.returncode


def check(what, found, expected):
    if found == expected:
        return True
    print(f"{what}: found {found!r}, expected {expected!r}")
    return False


def main(record, edit, recover):
    with tempfile.TemporaryDirectory() as folder:
        document = os.path.join(folder, "run.vex")
        recovered = os.path.join(folder, "recovered.vex")
        isright = check("record", run(record, document)[1], 0)
        isright &= check("edit", run(edit, document), ("A1: patient 8, FAM\n", 0))
        isright &= check("sound", run(recover, document, recovered), ("", 0))

        size = os.path.getsize(document)
        with open(document, "ab") as file:
            file.write(b"Zzz")  # too few for a record
        text, code = run(recover, document, recovered)
        isright &= check("repair", (code, os.path.getsize(document)), (0, size))
        isright &= check("backup", os.path.getsize(document + ".backup"), size + 3)
        isright &= check("told", f"byte {size}:" in text and "repaired; backup:" in text, True)
        isright &= check("nothing to recover", os.path.exists(recovered), False)

        with open(document, "r+b") as file:  # the first record, after the header
            file.seek(1024)
            file.write(bytes(8))
        text, code = run(recover, document, recovered)
        isright &= check("something is lost", code, 1)
        isright &= check("recovery", f"recovered {FRAMES} frames" in text, True)
    return 0 if isright else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
