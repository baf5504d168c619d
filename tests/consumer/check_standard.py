#!/usr/bin/env python3
"""Checks that each header, included first, reports an older language standard with one message.

usage: check_standard.py COMPILER INCLUDE_FOLDER HEADER...
"""

import os
import subprocess
import sys

MESSAGE = "vex2 needs C++20 or later: compile with -std=c++20"


def errors(compiler, include_folder, header):
    """The error lines of the compiler for a C++17 source that includes the header."""
    command = [compiler, "-std=c++17", "-fsyntax-only", "-I", include_folder, "-x", "c++", "-"]
    environment = dict(os.environ, LC_ALL="C")
    result = subprocess.run(command, input=f'#include "{header}"\n', capture_output=True,
                            text=True, env=environment, check=False)
    return [line for line in result.stderr.splitlines() if "error:" in line]


def faults(compiler, include_folder, header):
    """The faults of the header, one line each."""
    refusals = errors(compiler, include_folder, header)
    told = [line for line in refusals if "#error" in line or line.endswith(f'"{MESSAGE}"')]
    if len(told) != 1 or MESSAGE not in told[0]:
        yield f"{header}: compiled as C++17, prints the message {len(told)} times instead of once"
    # The second error is the end of the compilation.
    if len(refusals) > 2:
        yield f"{header}: compiled as C++17, gives {len(refusals)} errors instead of at most 2"


def main(compiler, include_folder, *headers):
    found = [fault for header in headers for fault in faults(compiler, include_folder, header)]
    print("\n".join(found) or f"{len(headers)} headers report an older standard with one message")
    return 1 if found or not headers else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
