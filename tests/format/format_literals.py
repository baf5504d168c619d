#!/usr/bin/env python3
"""Checks that tags and codes of the format are written only in vex2/format: format_literals.py
SOURCE_ROOT

The tags of records and the codes of the header have names in vex2/format, so that a tag or a code
is changed only there. This program looks in all other sources of the library, of lab and of the
command for string literals that are such a tag or code, and for rows of the tag table that are
given as numbers. Tests are not checked: they contain the expected values on purpose.

format_literals.py --self-test SOURCE_ROOT checks that each kind of breach is found.
"""

import pathlib
import re
import sys

# Literals that look like a tag but are not one: file, literal, reason.
ALLOWED = {
    ("lab/check/MeaningCheck.cpp", "ENDO"): "the task of a detector in a well",
    ("lab/model/Run.h", "RAWa"): "a public header, which sees nothing of vex2/format",
    ("tools/vex/options/AnalysisOptions.cpp", "NAME"): "stands for a value in the help",
    ("tools/vex/command/CqCommand.cpp", "NAME"): "stands for a value in the help",
    ("tools/vex/options/CsvOptions.cpp", "NAME"): "stands for a value in the help",
    ("tools/vex/options/PlateOption.cpp", "NAME"): "stands for a value in the help",
    ("tools/vex/command/StudyCommand.cpp", "NAME"): "an argument's name in the help",
}

FOLDERS = ("vex2", "lab", "tools")
HOME = "vex2/format/"
STRING = re.compile(r'"((?:[^"\\]|\\.)*)"')
ROW = re.compile(r"\b(?:TagAt|Kind)\s*[({]\s*\d+")


def names_of(root):
    """The tags and codes that have names, from the two headers that name them."""
    kinds = (root / HOME / "RecordKinds.h").read_text(encoding="utf-8")
    tags = set(re.findall(r'\{Kind::k\w+, "(.{4})"', kinds))
    header = (root / HOME / "HeaderLayout.h").read_text(encoding="utf-8")
    codes = set(re.findall(r'std::string_view k\w+ = "(.{4})"', header))
    codes |= set(re.findall(r'AssayCode k\w+ = \{"(.{4})"', header))
    # If the table had another layout, the check would find nothing.
    if len(tags) < 70 or len(codes) < 10:
        sys.exit(f"only {len(tags)} tags and {len(codes)} codes found in {HOME}")
    return tags | codes


def breaches_in(path, text, names):
    """Each (path, literal, line number); comments do not count."""
    for number, line in enumerate(text.splitlines(), 1):
        code = re.sub(r"//.*", "", line)
        if code.lstrip().startswith("#include"):
            continue
        for literal in STRING.findall(code):
            if literal in names:
                yield path, literal, number
        for row in ROW.findall(code):
            yield path, row, number


def breaches_of(root, names):
    for folder in FOLDERS:
        for path in sorted((root / folder).rglob("*")):
            name = path.relative_to(root).as_posix()
            if path.suffix in (".h", ".cpp") and not name.startswith(HOME):
                yield from breaches_in(name, path.read_text(encoding="utf-8"), names)


def check(root):
    unused = set(ALLOWED)
    failed = False
    for path, literal, number in breaches_of(root, names_of(root)):
        if (path, literal) in ALLOWED:
            unused.discard((path, literal))
            continue
        print(f"{path}:{number}: '{literal}' has a name in {HOME}")
        failed = True
    for path, literal in sorted(unused):
        print(f"{path}: the exception for '{literal}' is not needed any more")
        failed = True
    return 1 if failed else 0


def self_test(root):
    names = names_of(root)

    def found(line):
        return [literal for _, literal, _ in breaches_in("a.cpp", line, names)]

    cases = [
        ('if (tag == "RAWa") return;', ["RAWa"]),
        ('f("GLBL", "EOF ");', ["GLBL", "EOF "]),
        ('status == "PROG"', ["PROG"]),
        ('magic = "Vex2"', ["Vex2"]),
        ('assay = "AbsQ"', ["AbsQ"]),
        ("TagAt(34)", ["TagAt(34"]),
        ("Kind{34}", ["Kind{34"]),
        ('show("the record \\"RAWa\\" is cut short")', []),
        ('use(tag);  // "RAWa"', []),
        ("TagOf(Kind::kRawData)", []),
        ('#include "NAME"', []),
    ]
    failed = [(line, found(line)) for line, expected in cases if found(line) != expected]
    for line, literals in failed:
        print(f"{line}: found {literals}")
    return 1 if failed else 0


def main():
    arguments = sys.argv[1:]
    run = check
    if arguments[:1] == ["--self-test"]:
        run = self_test
        arguments = arguments[1:]
    if len(arguments) != 1:
        sys.exit(__doc__)
    sys.exit(run(pathlib.Path(arguments[0])))


if __name__ == "__main__":
    main()
