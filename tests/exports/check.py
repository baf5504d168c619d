#!/usr/bin/env python3
"""Compares the exported symbols of a shared library with the list of names for hosts.

usage: check.py LIBRARY LIST [NM]

LIST holds the names of classes and functions, one per line; a class stands for all its members.
The check fails if a symbol is exported but not listed, or listed but not exported: the list is
exactly the library's binary interface.
"""

import re
import subprocess
import sys

# Symbols that the compiler adds for a class or a function.
ATTENDANT = re.compile(
    r"^(vtable|typeinfo|typeinfo name|VTT|guard variable) for |"
    r"^(non-virtual thunk|virtual thunk|covariant return thunk) to ")


def exported(library, nm):
    """The demangled names of the dynamic symbols that `library` defines."""
    command = [nm, "--dynamic", "--defined-only", "--demangle", "--format=posix", library]
    lines = subprocess.run(command, check=True, capture_output=True, text=True).stdout.splitlines()
    return sorted({re.sub(r" [A-Za-z] [0-9a-f]+( [0-9a-f]+)?\s*$", "", line) for line in lines})


def belongs(symbol, name):
    """Whether `symbol` is `name`, or one of its overloads, specialisations or members."""
    bare = ATTENDANT.sub("", symbol)
    return bare.startswith(name) and not re.match(r"\w", bare[len(name):])


def main(library, list_path, nm="nm"):
    with open(list_path, encoding="utf-8") as lines:
        names = [line.strip() for line in lines if line.strip()]
    symbols = exported(library, nm)
    unlisted = [s for s in symbols if not any(belongs(s, name) for name in names)]
    absent = [name for name in names if not any(belongs(s, name) for s in symbols)]
    for symbol in unlisted:
        print(f"exported, but not listed: {symbol}")
    for name in absent:
        print(f"listed, but not exported: {name}")
    print(f"{library}: {len(symbols)} symbols, {len(names)} names in {list_path}")
    return 1 if unlisted or absent or not symbols else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
