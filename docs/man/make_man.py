#!/usr/bin/env python3
"""Writes the man page of the vex command from its --help texts: make_man.py VEX >vex.1"""

import os
import re
import subprocess
import sys

# Parts of --help that the man page leaves out: which options exclude each other, types of named values,
# and choices that the name already lists.
NOISE = re.compile(r" REQUIRED| (Excludes|Needs):( --[\w-]+)+|:(UINT|FLOAT|TEXT|INT)\b|(?<=[A-Z]) TEXT\b|UINT:(?={)"
                   r"|(?<=[A-Za-z]):{[^}]*}")
# A single space separates an option that fills its column from its text.
FULL_COLUMN = re.compile(r"((?:-\w,)?--[\w-]+(?: [A-Z][A-Z.a-z]*)?) ([A-Z][a-z].*)")
RANGE = re.compile(r" in \[(\S+) - (\S+)\]")

# Options of every command, which are described once.
COMMON = "Screen options"

HEAD = r'''.\" Made by make_man.py from what vex --help says; do not edit.
.TH VEX 1 "" "vex2" "Plate documents"
.SH NAME
vex \- plate documents of a real-time PCR instrument
.SH SYNOPSIS
.B vex
.I COMMAND
[\fIOPTION\fR]... [\fIARGUMENT\fR]...
.SH DESCRIPTION
.B vex
records runs of a plate into documents, shows what documents hold, and changes them without harm. A
document whose run is in progress is never rewritten, nor is one that could not be read whole.
.SH COMMANDS'''

SCREENS = r'''.PP
What is printed for people is as wide as
.BR \-\-width ,
else as COLUMNS says, else as the terminal is. To a file or a pipe, text is printed in lines as long as they come, and a
plate wider than 200 columns in groups of columns. Where the locale is not a UTF-8 one (LC_ALL, LC_CTYPE, LANG), or TERM is
.IR dumb ,
only ASCII is printed, other characters as \euNNNN. Colors are for terminals that are not dumb, unless NO_COLOR is set;
.B \-\-color
precedes both.'''

TAIL = r'''.SH EXIT STATUS
.TP
.B 0
done
.TP
.B 1
a document, or another file that was read, is at fault
.TP
.B 2
the call is at fault: arguments, or paths that lead nowhere
.TP
.B 3
the system is at fault: disk, memory, locks
.TP
.B 130
the user interrupted it
.PP
Every error is one line on standard error that names the file, and the offset where there is one. With
.B \-\-json
it is an object with one of the codes above.
.SH FILES
.TP
.I vex2/settings.ini
under $XDG_CONFIG_HOME or ~/.config, and
.IR /etc/vex2/settings.ini :
settings of the instrument
.TP
.I .NAME.recording
beside a document, the lock of who records it
.SH SEE ALSO
The document format, docs/format.md'''


def escaped(text):
    text = text.replace("\\", r"\e").replace("-", r"\-")
    return r"\&" + text if text.startswith((".", "'")) else text


def output_of(vex, *words):
    # The width must not depend on the terminal.
    environment = {name: value for name, value in os.environ.items() if name != "COLUMNS"}
    return subprocess.run([vex, *words], check=True, capture_output=True, text=True,
                          env=environment).stdout


def help_of(vex, *words):
    return output_of(vex, *words, "--help")


def sections(text):
    """The lines of a help text by heading; lines before the first heading are under ''."""
    found, heading = {"": []}, ""
    for line in text.splitlines():
        if re.fullmatch(r"[A-Z].*:", line):
            heading = line.rstrip(":")
            found[heading] = []
        else:
            found[heading].append(line)
    return found


def entries(lines):
    """Name and explanation of each option, joined from wrapped lines."""
    found = []
    for line in lines:
        if match := re.match(r"  (\S.*?)(?:  +(.*))?$", line):
            name, text = NOISE.sub("", match[1]), match[2] or ""
            if not text and (full := FULL_COLUMN.fullmatch(name)):
                name, text = full.groups()
            found.append([name, text])
        elif line.strip():
            found[-1][1] = f"{found[-1][1]} {line.strip()}".strip()
    return [readable(name, text) for name, text in found]


def readable(name, text):
    """The form of a man page: only the name of the value behind the option, its range in the text."""
    if limits := RANGE.search(name):
        text = f"{text} ({limits[1]} to {limits[2]})"
        name = RANGE.sub("", name)
    name = re.sub(r"{([^}]*)}", lambda choices: choices[1].replace(",", "|"), name)
    name = re.sub(r"\bU?INT\b", "N", name)
    name = re.sub(r"(\.\.\.)? \.\.\.", "...", name)
    if not name.startswith("-"):
        name = name.split(" ")[0]  # the usage line already shows the form of an argument
    return name, text


def subcommands(parts):
    """The names of the commands in a help text."""
    lines = parts.get("Subcommands", [])
    return [match[1] for line in lines if (match := re.match(r"  (\w+)", line))]


def command_page(vex, *words):
    parts = sections(help_of(vex, *words))
    usage = next(line for line in parts[""] if line.startswith("Usage:"))
    about = " ".join(line for line in parts[""] if line and line != usage)
    yield f".SS {usage[len('Usage: '):]}".replace("-", r"\-")
    yield escaped(about)
    for heading in ("Positionals", "Options"):
        for option, text in entries(parts.pop(heading, [])):
            if not option.startswith("-h,"):
                yield from (".TP", f".B {escaped(option)}", escaped(text))
    inner = subcommands(parts)
    for heading in ("Subcommands", COMMON):
        parts.pop(heading, None)
    for heading, lines in parts.items():
        kept = [escaped(line[2:] if line.startswith("  ") else line) for line in lines if line]
        if heading and kept:
            yield from (".PP", escaped(heading) + ":", ".PP", ".nf", ".RS", *kept, ".RE", ".fi")
    for name in inner:
        yield from command_page(vex, *words, name)


def error_codes(vex):
    """Code, exit code and meaning of each kind of error, from the table of vex help errors."""
    text = output_of(vex, "help", "errors")
    table = text[text.index("\ncode "):].strip().splitlines()[1:]
    for code, exit_code, meaning in (re.split(r"  +", line, maxsplit=2) for line in table):
        yield from (".TP", f".BR {escaped(code)} \" (\" {exit_code} )", escaped(meaning))


def main():
    vex = sys.argv[1]
    print(HEAD)
    for name in subcommands(sections(help_of(vex))):
        print("\n".join(command_page(vex, name)))
    print(".SH SCREEN OPTIONS")
    for option, text in entries(sections(help_of(vex))[COMMON]):
        print("\n".join((".TP", f".B {escaped(option)}", escaped(text))))
    print(SCREENS)
    print(".SH ERROR CODES\nOf errors that are printed as JSON, with the exit code:")
    print("\n".join(error_codes(vex)))
    print(TAIL)


if __name__ == "__main__":
    main()
