#!/usr/bin/env python3
"""Holds folders to their order: includes.py SOURCE_ROOT

A source or header includes headers of its own folder and of folders in layers below. Folders of one
layer do not include each other. The layers are those of docs/architecture.md, the lowest first.

includes.py --self-test checks that each kind of breach is found.
"""

import pathlib
import re
import sys
import tempfile

LAYERS = (
    ("vex2/framework",),
    ("vex2/format",),
    ("vex2/container",),
    ("vex2/run", "vex2/setup", "vex2/storage", "vex2/study"),
    ("vex2/manager",),
    ("lab",),
    ("lab/model",),
    ("lab/analysis", "lab/compare"),
    ("lab/csv",),
    ("lab/record",),
    ("lab/exchange",),
    ("lab/rdml",),
    ("lab/formats",),
    ("lab/check",),
    ("lab/recover",),
    ("lab/json", "lab/text"),
    ("lab/import", "lab/picture"),
    ("lab/live", "lab/picture/image"),
    ("lab/live/server",),
    ("python/src", "tools/vex"),
    ("python/src/raw", "tools/vex/files"),
    ("tools/vex/help", "tools/vex/screen"),
    ("tools/vex/options",),
    ("tools/vex/command",),
    ("tools/vex/main.cpp",),
)
# Two loops are there by nature, each in one source: the factory names every class of components, and
# a plate of a study is a document.
UPWARD = {
    "vex2/container/TagFactory.cpp": ("vex2/run", "vex2/setup", "vex2/study"),
    "vex2/study/CRQPlateComp.cpp": ("vex2/manager",),
}
ROOTS = ("vex2", "lab", "tools", "python/src")
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)


def layer_of(folder, layers):
    for number, folders in enumerate(layers):
        if folder in folders:
            return number
    return None


def home_of(path, layers):
    """What the order knows the file by: its own name, or else its folder."""
    return path if layer_of(path, layers) is not None else str(pathlib.PurePosixPath(path).parent)


def breaches_in(path, includes, layers, upward):
    """Each breach by the includes of one file, as a text."""
    home = home_of(path, layers)
    own = layer_of(home, layers)
    if own is None:
        yield f"{path}: the folder {home} has no layer"
        return
    needed = set()
    for header in includes:
        other = str(pathlib.PurePosixPath(header).parent)
        if other == home:
            continue
        layer = layer_of(other, layers)
        if layer is None:
            yield f"{path}: includes {header}, whose folder has no layer"
        elif layer >= own and other in upward.get(path, ()):
            needed.add(other)
        elif layer >= own:
            where = "beside" if layer == own else "above"
            yield f"{path}: includes {header}, which is {where} it"
    for folder in upward.get(path, ()):
        if folder not in needed:
            yield f"{path}: is allowed to include {folder}, and does not any more"


def breaches_of(root, layers, upward, fewest):
    paths = [path for top in ROOTS for path in sorted((root / top).rglob("*")) if path.suffix in (".h", ".cpp")]
    names = {path.relative_to(root).as_posix() for path in paths}
    found = [f"{path}: is in the list of exceptions, and is no file" for path in upward if path not in names]
    # In a tree that is laid out differently the check would find nothing.
    if len(paths) < fewest:
        found.append(f"only {len(paths)} sources and headers found")
    for path in paths:
        includes = [header for header in INCLUDE.findall(path.read_text(encoding="utf-8"))
                    # Headers that do not exist stop the compiler on purpose.
                    if (root / header).is_file()]
        found.extend(breaches_in(path.relative_to(root).as_posix(), includes, layers, upward))
    return found


def check(root):
    breaches = breaches_of(root, LAYERS, UPWARD, 300)
    for breach in breaches:
        print(breach)
    return 1 if breaches else 0


def self_test():
    layers = (("vex2/low",), ("lab/left", "lab/right"), ("tools/top",), ("tools/top/main.cpp",))
    upward = {"vex2/low/Loop.cpp": ("lab/left",), "vex2/low/Straight.cpp": ("lab/left",),
              "vex2/low/Gone.cpp": ("lab/left",)}
    tree = {
        "vex2/low/Low.h": [],
        "vex2/low/Up.cpp": ["vex2/low/Low.h", "tools/top/Top.h"],
        "vex2/low/Loop.cpp": ["lab/left/Left.h"],
        "vex2/low/Straight.cpp": ["vex2/low/Low.h"],
        "lab/left/Left.h": ["vex2/low/Low.h"],
        "lab/left/Beside.h": ["lab/right/Right.h"],
        "lab/right/Right.h": ["vex2/low/Low.h"],
        "lab/new/New.h": [],
        "lab/right/New.cpp": ["lab/new/New.h"],
        "tools/top/Top.h": ["lab/left/Left.h", "vex2/low/Low.h", "vex2/low/none.h"],
        "tools/top/Top.cpp": ["tools/top/Top.h"],
        "tools/top/main.cpp": ["tools/top/Top.h"],
    }
    expected = [
        "vex2/low/Gone.cpp: is in the list of exceptions, and is no file",
        "vex2/low/Straight.cpp: is allowed to include lab/left, and does not any more",
        "vex2/low/Up.cpp: includes tools/top/Top.h, which is above it",
        "lab/left/Beside.h: includes lab/right/Right.h, which is beside it",
        "lab/new/New.h: the folder lab/new has no layer",
        "lab/right/New.cpp: includes lab/new/New.h, whose folder has no layer",
        "only 12 sources and headers found",
    ]
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        for path, includes in tree.items():
            (root / path).parent.mkdir(parents=True, exist_ok=True)
            (root / path).write_text("".join(f'#include "{header}"\n' for header in includes))
        found = breaches_of(root, layers, upward, len(tree) + 1)
    for breach in sorted(set(found) ^ set(expected)):
        print(f"{'not expected' if breach in found else 'not found'}: {breach}")
    return 0 if sorted(found) == sorted(expected) else 1


def main():
    if sys.argv[1:] == ["--self-test"]:
        sys.exit(self_test())
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    sys.exit(check(pathlib.Path(sys.argv[1])))


if __name__ == "__main__":
    main()
