#!/usr/bin/env python3
"""Checks that a test expects every sentence that the command can print, and lists the sentences.

usage: messages.py [--list | --self-test] ROOT

A sentence is a string literal of three words or more in lab/ or tools/vex/ that is not help: the
texts of errors, notes, findings and reports. Adjacent literals are one sentence, and {} is a gap
for a value. A test must expect at least half of each sentence: in a table of slips, in a string of
a C++ test or in tests/tools/serve.py. UNMET.txt in this folder lists the sentences that no test can
cause, each with the reason; a line in it that is no longer needed is an error, too. --list prints
all sentences with their files and lines, for proofreading.
"""

import argparse
import pathlib
import re
import sys

HERE = pathlib.Path(__file__).resolve().parent
LEAST = 12  # the fewest letters by which a part of a sentence can be identified
# Calls whose arguments are help texts.
HELP = {"Add", "AddFlag", "PutFirst", "PutLast", "Command", "RecordingCommand", "ListingCommand",
        "StudyChange", "Description", "set_version_flag", "set_help_flag", "exampleText",
        "ErrorKind", "static_assert", "fieldList"}
# Texts that are not messages: layouts, help, names of codes and fields, and remedies of the library
# that the command replaces by its own.
NOT_SENTENCES = ("lab/text/", "lab/picture/", "lab/analysis/", "lab/Error.cpp", "lab/model/Codes.cpp",
                 "lab/model/DetectorFields.cpp", "lab/model/Settings.cpp",
                 "lab/model/AssayTypes.cpp", "tools/vex/help/", "tools/vex/command/HelpCommand.cpp")
TOKEN = re.compile(r'//[^\n]*|/\*.*?\*/|R"\((.*?)\)"|"((?:[^"\\\n]|\\.)*)"|\'(?:[^\'\\]|\\.)+\''
                   r"|\d[\w'.]*|([A-Za-z_]\w*)|([(){}\[\];,])|\s+|.", re.S)
ESCAPES = {"n": "\n", "t": "\t", '"': '"', "\\": "\\", "'": "'"}


def unescaped(text):
    return re.sub(r"\\(.)", lambda m: ESCAPES.get(m.group(1), m.group(0)), text)


def literals(text):
    """The literals of C++ source: text, line, and the names of the calls around them."""
    calls, name, found, is_joined = [], "", [], False
    for token in TOKEN.finditer(text):
        raw, literal, word, mark = token.groups()
        if raw is not None or literal is not None:
            value = raw if raw is not None else unescaped(literal)
            if is_joined:
                found[-1][0] += value
            else:
                found.append([value, text.count("\n", 0, token.start()) + 1, list(calls)])
            is_joined = True
            continue
        if token.group().isspace() or token.group().startswith(("//", "/*")):
            continue
        is_joined = False
        if mark in ("(", "{", "["):
            calls.append(name)
        elif mark in (")", "}", "]") and calls:
            calls.pop()
        name = word or ("" if mark in (";", ",") else name)
    return found


def is_sentence(text):
    return len(re.findall(r"[A-Za-z]{2,}", text)) >= 3 and " " in text and "%" not in text


def sentences(root):
    found = {}
    for path in sorted([*(root / "lab").rglob("*.cpp"), *(root / "tools/vex").rglob("*.cpp")]):
        name = str(path.relative_to(root))
        if name.startswith(NOT_SENTENCES):
            continue
        source = re.sub(r"constexpr const char\* k\w*(Meaning|Footer|Summary).*?;\n\n", "",
                        path.read_text(), flags=re.S)
        for text, line, calls in literals(source):
            if is_sentence(text) and not HELP & set(calls):
                found.setdefault(text, f"{name}:{line}")
    return found


def parts(sentence):
    """The parts between the gaps that are long enough to identify the sentence."""
    fixed = [part.strip(" ,;:.'\"()\n") for part in re.split(r"\{[^}]*\}", sentence)]
    long = [part for part in fixed if len(part) >= LEAST]
    return long or [max(fixed, key=len)]


def expectations(root):
    texts = []
    for path in root.glob("tests/tools/slips/*.slips"):
        texts += [line[3:] for line in path.read_text().splitlines() if line[:2] in ("2>", "1>")]
        texts += [re.sub(r"\\(.)", r"\1", line[3:]) for line in path.read_text().splitlines()
                  if line[:2] in ("2~", "1~")]
    texts += [text for text, _, _ in literals((root / "tests/tools/serve.py").read_text())]
    for folder in ("tools", "lab", "reliability", "memory"):
        for path in (root / "tests" / folder).rglob("*.cpp"):
            texts += [text for text, _, _ in literals(path.read_text()) if len(text) >= LEAST]
    return [text for text in (" ".join(text.split()) for text in texts) if len(text) >= LEAST]


def is_met(sentence, expected):
    """Whether expected texts contain at least half of the text between the gaps."""
    fixed = [" ".join(part.split()) for part in parts(sentence)]
    met = 0
    for part in fixed:
        if any(part in text for text in expected):
            met += len(part)
        else:
            met += max((len(text) for text in map(stripped, expected) if text in part), default=0)
    return 2 * met >= sum(map(len, fixed))


def stripped(text):
    return text.strip(" ;:,")


def read_unmet(text):
    lines = [line for line in text.splitlines() if line and not line.startswith("#")]
    return dict(line.rsplit(" # ", 1) for line in lines)


def complaints(found, expected, unmet):
    left = dict(unmet)
    for text, place in sorted(found.items(), key=lambda item: item[1]):
        plain = " ".join(text.split())
        is_unmet = left.pop(plain, None) is not None
        if is_met(text, expected) and is_unmet:
            yield f"{place}: a test expects this now; remove it from UNMET.txt: {plain}"
        elif not is_met(text, expected) and not is_unmet:
            yield f"{place}: no test expects this: {plain}"
    for text in left:
        yield f"UNMET.txt: no such sentence is left: {text}"


def self_test():
    source = 'throw Error(code, file, "the cat " /* or dog */\n "ate {} of them");  // "not this one"'
    found = {text: "a.cpp:1" for text, _, _ in literals(source) if is_sentence(text)}
    sentence = "the cat ate {} of them"
    assert list(found) == [sentence], found
    assert not list(complaints(found, ["run.vex: the cat ate 2 of them"], {}))
    assert len(list(complaints(found, ["the dog slept all day"], {}))) == 1
    half = {"the cat sat on the mat and slept for {} hours until noon": "a.cpp:1"}
    assert len(list(complaints(half, ["and slept for"], {}))) == 1
    assert not list(complaints(found, [], {sentence: "cats do not eat"}))
    assert len(list(complaints(found, ["the cat ate 2 of them"], {sentence: "-"}))) == 1
    assert len(list(complaints({}, [], {sentence: "-"}))) == 1
    return 0


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--list", action="store_true")
    parser.add_argument("--self-test", action="store_true")
    parser.add_argument("root", type=pathlib.Path)
    options = parser.parse_args()
    if options.self_test:
        return self_test()
    found = sentences(options.root)
    if options.list:
        for text, place in sorted(found.items(), key=lambda item: item[1]):
            print(f"{place}: {' '.join(text.split())}")
        return 0
    if len(found) < 200:  # the sources were not found
        print(f"only {len(found)} sentences were found")
        return 1
    unmet = read_unmet((HERE / "UNMET.txt").read_text())
    bad = list(complaints(found, expectations(options.root), unmet))
    for line in bad:
        print(line)
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
