"""Turns the manual pages that the command writes of itself into pages of the site."""

import re

ESCAPES = {r"\-": "-", r"\e": "\\", r"\(aq": "'", r"\(ga": "`", r"\(ha": "^", r"\(ti": "~", r"\(dq": '"', r"\&": ""}
LAYOUT = (".nh", ".hy", ".ad", ".ad l", ".TH")


def escaped(text):
    return re.sub(r"([\\`*_\[\]<>#|{}$~])", r"\\\1", text)


def converted(line):
    """A line of text: fonts become bold and italic."""
    parts = re.split(r"(\\f[BIR])", line)
    result, mark = "", ""
    for part in parts:
        if part in (r"\fB", r"\fI", r"\fR"):
            mark = {r"\fB": "**", r"\fI": "*", r"\fR": ""}[part]
            continue
        text = re.sub(r"\\(?:-|e|&|\(\w\w)", lambda match: ESCAPES[match[0]], part)
        if mark and text.strip():
            result += f"{mark}{escaped(text)}{mark}"
        else:
            result += escaped(text)
    return re.sub(r"\*\*(vex-\w+)\*\*\(1\)", r"[\1](\1.md)", result.replace("\\-", "-"))


def headed(text):
    return text.capitalize() if text.isupper() else text


def markdown(roff, name):
    lines, result, preformatted = roff.splitlines(), [f"# {name}", ""], False
    at = 0
    while at < len(lines):
        line = lines[at]
        if line.startswith((".SH ", ".SS ")):
            level = "##" if line.startswith(".SH") else "###"
            result += ["", f"{level} {headed(converted(line[4:]))}", ""]
        elif line == ".TP":
            term, text = converted(lines[at + 1]), converted(lines[at + 2])
            result += [f"{term}", f"  : {text}", ""]
            at += 2
        elif line == ".PP":
            result.append("")
        elif line.startswith((".BR ", ".B ")):
            words = line.split(" ", 1)[1].replace('"', "")
            result.append(converted(words if line.startswith(".B ") else words.replace(" ", "", 1)))
        elif line.startswith(LAYOUT):
            # Between these lines stands a command line as it is typed.
            if line == ".ad l":
                typed = re.sub(r"\\f[BIR]", "", lines[at + 1])
                typed = re.sub(r"\\(?:-|e|&|\(\w\w)", lambda match: ESCAPES[match[0]], typed)
                result += ["", "```text", typed, "```", ""]
                at += 1
        else:
            result.append(converted(line))
        at += 1
    return "\n".join(result) + "\n"


def write_pages(source, target):
    target.mkdir(parents=True)
    names = sorted(path.stem for path in source.glob("*.1"))
    for name in names:
        (target / f"{name}.md").write_text(markdown((source / f"{name}.1").read_text(), name))
    index = ["# Manual pages", "", "One page for `vex` and one for each of its commands, as `man` shows them.",
             "", "```{toctree}", *names, "```", ""]
    (target / "index.md").write_text("\n".join(index))
