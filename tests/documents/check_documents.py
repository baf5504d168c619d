"""Checks README.md and docs/: links and paths exist, and examples equal their sources.

usage: check_documents.py [--vex PATH]    --vex also compares commands and options with the documents
"""

import argparse
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
LINK = re.compile(r"\[[^\]]*\]\(([^)\s]+)\)")
SPAN = re.compile(r"`([^`\n]+)`")
# Documents name sources by their path from the root, from a library, or from the command.
BASES = ("", "vex2", "lab", "tools/vex")
# Paths outside the tree that documents may name: made by builds, or files of the user.
ELSEWHERE = re.compile(r"\.\./shared/|build/|vex2/settings\.ini$|/")
HEADING = re.compile(r"^#+ +(.*)$", re.MULTILINE)


def documents():
    pages = sorted(ROOT.glob("*.md")) + sorted((ROOT / "docs").rglob("*.md"))
    return pages + [ROOT / "tests" / "data" / "README.md"]


def without_code(text):
    return re.sub(r"^```.*?^```", "", text, flags=re.MULTILINE | re.DOTALL)


def anchor(heading):
    """The anchor of a heading in links."""
    plain = re.sub(r"[^\w\- ]", "", heading.lower())
    return plain.strip().replace(" ", "-")


def broken_links(page):
    text = without_code(page.read_text())
    for target in LINK.findall(text):
        if re.match(r"[a-z]+:", target):
            continue
        path, _, name = target.partition("#")
        file = (page.parent / path).resolve() if path else page
        if not file.exists():
            yield f"{page.relative_to(ROOT)}: the link {target} leads to no file"
        elif name and name not in map(anchor, HEADING.findall(without_code(file.read_text()))):
            yield f"{page.relative_to(ROOT)}: the link {target} leads to no heading"


def named_paths(text):
    """Words in code spans that look like paths in the tree."""
    tops = {entry.name for entry in ROOT.iterdir() if entry.is_dir()}
    for span in SPAN.findall(without_code(text)):
        for word in span.split():
            is_path = word.endswith("/") or word.split("/")[0] in tops or re.search(r"\w\.(cpp|h|py|md|sh)$", word)
            if "/" in word and is_path and re.fullmatch(r"[\w./*-]+", word) and not ELSEWHERE.match(word):
                yield word


def missing_paths(page):
    for path in named_paths(page.read_text()):
        # NAME and Name are placeholders for any name.
        pattern = re.sub(r"\b([A-Z]{4,}(?=/|[A-Z]|\b)|Name(?=[A-Z]))", "*", path.rstrip("/"))
        bases = [ROOT / base for base in BASES] + [page.parent]
        if not any(next(base.glob(pattern), None) for base in bases):
            yield f"{page.relative_to(ROOT)}: there is no {path}"


def drifted_example(readme):
    source = (ROOT / "examples" / "readme.cpp").read_text()
    blocks = re.findall(r"^```cpp\n(.*?)^```", readme, re.MULTILINE | re.DOTALL)
    if source not in blocks:
        yield "README.md: its C++ example is not examples/readme.cpp"


def unlisted_decisions():
    folder = ROOT / "docs" / "decisions"
    index = (folder / "README.md").read_text()
    for record in sorted(folder.glob("[0-9]*.md")):
        if f"({record.name})" not in index:
            yield f"docs/decisions/README.md: {record.name} is not in the index"


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def subcommands(help_text):
    names = help_text.partition("Subcommands:\n")[2].split("\n\n")[0]
    return re.findall(r"^  (\w+) ", names, re.MULTILINE)


def undocumented_options(vex, page, *words):
    """Yields options of a command and its subcommands that the man page lacks."""
    help_text = output_of(vex, *words, "--help")
    for option in re.findall(r"(?<![\w-])--[a-z][a-z-]+", help_text):
        if option.replace("-", r"\-") not in page and option != "--help":
            yield f"docs/man/vex.1: nothing about {option} of vex {' '.join(words)}"
    for inner in subcommands(help_text):
        if f".SS vex {' '.join(words)} {inner}" not in page:
            yield f"docs/man/vex.1: nothing about vex {' '.join(words)} {inner}"
        yield from undocumented_options(vex, page, *words, inner)


def undocumented_commands(vex, readme):
    """Yields commands without a row in the README or a section in the man page, and the reverse."""
    page = (ROOT / "docs" / "man" / "vex.1").read_text()
    there = set(subcommands(output_of(vex, "--help")))
    for name, text, pattern in (("README.md", readme, r"^\| `vex (\w+)"),
                                ("docs/man/vex.1", page, r"^\.SS vex (\w+)")):
        told = set(re.findall(pattern, text, re.MULTILINE))
        for command in sorted(there - told):
            yield f"{name}: nothing about vex {command}"
        for command in sorted(told - there):
            yield f"{name}: there is no vex {command}"
    for command in sorted(there):
        yield from undocumented_options(vex, page, command)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--vex")
    vex = parser.parse_args().vex
    readme = (ROOT / "README.md").read_text()
    faults = [fault for page in documents() for fault in broken_links(page)]
    faults += [fault for page in documents() for fault in missing_paths(page)]
    faults += drifted_example(readme)
    faults += unlisted_decisions()
    if vex:
        faults += undocumented_commands(vex, readme)
    print("\n".join(faults) or f"{len(documents())} documents have no faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
