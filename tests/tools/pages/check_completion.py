#!/usr/bin/env python3
"""Checks the completion in a shell: check_completion.py SHELL FOLDER_OF_COMPLETIONS

SHELL is bash, zsh or fish. It reads the completion file and completes lines as if a user had typed
them and pressed the tabulator key.
"""

import pathlib
import shutil
import subprocess
import sys
import tempfile

MISSING = 77  # what ctest takes for a skipped test
FILES = ("run.vex", "readings.csv")

# The line, words that must be offered, and words that must not be.
CASES = [
    ("vex ", ["record", "info", "study", "recover"], ["new", "run.vex"]),
    ("vex rec", ["record", "recover"], ["info"]),
    ("vex record --re", ["--readings", "--resume"], ["--wells", "--json"]),
    ("vex info --", ["--plate", "--long", "--json", "--width", "--color", "--help"], ["--force"]),
    ("vex study ", ["new", "add", "remove", "list", "extract", "set"], ["record"]),
    ("vex study n", ["new"], ["add"]),
    ("vex study new --d", ["--dry-run", "--drop-unknown"], ["--json"]),
    ("vex --color al", ["always"], ["auto"]),
    ("vex wells --show ", ["sample", "detector", "task"], ["run.vex", "--json"]),
    ("vex export --block REP", ["REPr", "REPn", "REPd", "REPt"], ["RAWa"]),
    ("vex info ru", ["run.vex"], ["readings.csv", "record"]),
    ("vex record run.vex --readings rea", ["readings.csv"], ["run.vex"]),
    ("vex help stu", ["study"], ["new", "run.vex"]),
    ("vex help err", ["errors"], []),
]

BASH = r"""
source "$1/bash/vex"
read -ra COMP_WORDS <<<"$2"
[[ $2 == *" " ]] && COMP_WORDS+=("")
COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
_vex
printf '%s\n' "${COMPREPLY[@]}"
"""

# A completion needs a line editor, so zsh runs in a separate terminal. The function compadd, which
# every completion calls at the end, is replaced by one that prints its arguments.
ZSH = r"""
zmodload zsh/zpty
zpty shell zsh -f -i
zpty -w shell "PS1=; PROMPT=; fpath=($1/zsh \$fpath); autoload -U compinit; compinit -u -d $3/dump"
zpty -w shell 'bindkey "^I" complete-word; unsetopt beep menu_complete auto_list; setopt no_list_beep'
zpty -w shell 'zstyle ":completion:*" list-grouped false; LISTMAX=10000
compadd () {
  local -a found; local i
  builtin compadd -O found "$@"
  for i in $found; do print -r -- "<offer>$i</offer>"; done
  builtin compadd "$@"
}'
zpty -w shell 'echo re""ady'
zpty -r shell text '*ready*'
zpty -w -n shell "$2"$'\t'
zpty -w shell $'\x15''echo fini""shed'
zpty -r shell text '*finished*'
print -r -- "$text"
zpty -d shell
"""

FISH = r"""
source $argv[1]/fish/vex.fish
complete -C $argv[2]
"""


def offered(shell, folder, line, scratch):
    scripts = {"bash": ["bash", "--norc", "-c", BASH, "bash"], "zsh": ["zsh", "-f", "-c", ZSH, "zsh"],
               "fish": ["fish", "--no-config", "-c", FISH]}
    environment = {"PATH": "/usr/bin:/bin", "HOME": scratch, "TERM": "dumb", "LC_ALL": "C.UTF-8"}
    done = subprocess.run([*scripts[shell], str(folder), line, scratch], cwd=pathlib.Path(scratch) / "files",
                          capture_output=True, text=True, env=environment, timeout=60, errors="replace")
    if done.stderr.strip():
        raise SystemExit(f"{shell}: {line!r}: {done.stderr.strip()}")
    if shell == "zsh":
        return [part.partition("</offer>")[0] for part in done.stdout.split("<offer>")[1:]]
    return [word.partition("\t")[0] for word in done.stdout.splitlines()]


def main():
    shell, folder = sys.argv[1], pathlib.Path(sys.argv[2]).resolve()
    if not shutil.which(shell):
        print(f"skipped: the shell {shell} is missing; scripts/setup installs it")
        return MISSING
    faults = []
    with tempfile.TemporaryDirectory() as scratch:
        files = pathlib.Path(scratch) / "files"
        files.mkdir()
        for name in FILES:
            (files / name).touch()
        for line, wanted, unwanted in CASES:
            words = offered(shell, folder, line, scratch)
            faults += [f"{line!r}: {word} is not offered, but {words}" for word in wanted if word not in words]
            faults += [f"{line!r}: {word} is offered" for word in unwanted if word in words]
    print("\n".join(faults) or f"{shell} completes {len(CASES)} lines as it should")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
