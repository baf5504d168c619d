"""Checks README.md and docs/: links and paths exist, and examples equal their sources.

usage: check_documents.py [--vex PATH]    --vex also compares the commands with README.md
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
    # Links of docs/site/ are those of the site, which docs/site/check_links.py checks.
    pages = sorted(ROOT.glob("*.md")) + sorted(set((ROOT / "docs").rglob("*.md")) - set((ROOT / "docs" / "site").iterdir()))
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


def untested_code(page):
    """Yields code of a guide that is not a part of an example, which is compiled and run."""
    examples = [source.read_text() for source in (ROOT / "examples").glob("*.cpp")]
    for block in re.findall(r"^```cpp\n(.*?)^```", page.read_text(), re.MULTILINE | re.DOTALL):
        if not any(block in example for example in examples):
            yield f"{page.relative_to(ROOT)}: no example contains the code: {block.splitlines()[0].strip()}"


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


def undocumented_commands(vex, readme):
    """Yields commands without a row in the README, and the reverse."""
    there = set(subcommands(output_of(vex, "--help")))
    told = set(re.findall(r"^\| `vex (\w+)", readme, re.MULTILINE))
    for command in sorted(there - told):
        yield f"README.md: nothing about vex {command}"
    for command in sorted(told - there):
        yield f"README.md: there is no vex {command}"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--vex")
    vex = parser.parse_args().vex
    readme = (ROOT / "README.md").read_text()
    faults = [fault for page in documents() for fault in broken_links(page)]
    faults += [fault for page in documents() for fault in missing_paths(page)]
    faults += drifted_example(readme)
    faults += [fault for page in sorted((ROOT / "docs").glob("*.md")) for fault in untested_code(page)]
    faults += unlisted_decisions()
    if vex:
        faults += undocumented_commands(vex, readme)
    print("\n".join(faults) or f"{len(documents())} documents have no faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
