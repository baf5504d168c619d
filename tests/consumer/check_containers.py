#!/usr/bin/env python3
"""Checks that no class in a public header has a container of the standard library in its private
part, because its layout would become part of the library's binary interface.

usage: check_containers.py [--marked] FOLDER HEADER...

With --marked, the headers are samples with defects: the check must find exactly the lines that end
with the comment "// found".
"""

import re
import sys

CONTAINERS = ("array|deque|forward_list|list|map|multimap|multiset|priority_queue|queue|set|stack|"
              "unordered_map|unordered_multimap|unordered_multiset|unordered_set|vector")
CONTAINER = re.compile(rf"\bstd::({CONTAINERS})\b")
CLASS = re.compile(r"\b(class|struct|union)\b(?!.*\benum\b)")
TOKEN = re.compile(r"(public|protected|private)\s*:(?!:)|[{};]")


def without_comments(text):
    """`text` with comments and literals replaced by spaces; line breaks stay."""
    pattern = r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])*\''
    return re.sub(pattern, lambda found: re.sub(r"[^\n]", " ", found.group()), text, flags=re.S)


def private_parts(code):
    """The private parts of classes in `code`, as (begin, end)."""
    blocks = []  # for each open brace: the current access, or None outside of classes
    statement = 0
    for token in TOKEN.finditer(code):
        access = blocks[-1] if blocks else None
        if access == "private" or "hidden" in blocks:
            yield statement, token.start()
        if token.group() == "{":
            head = code[statement:token.start()]
            kind = CLASS.search(re.sub(r"<[^<>]*>|\benum\s+(class|struct)\b", "", head))
            is_hidden = access == "private" or "hidden" in blocks
            if is_hidden:
                blocks.append("hidden")
            elif kind and "(" not in head[kind.start():]:
                blocks.append("private" if kind.group(1) == "class" else "public")
            else:
                blocks.append(None)
        elif token.group() == "}":
            blocks.pop()
        elif token.group(1) and blocks and blocks[-1] in ("public", "protected", "private"):
            blocks[-1] = token.group(1)
        statement = token.end()


def faults(text):
    """The numbers of the lines with a container in a private part."""
    code = without_comments(text)
    return sorted({code.count("\n", 0, begin + found.start()) + 1
                   for begin, end in private_parts(code)
                   for found in CONTAINER.finditer(code[begin:end])})


def main(*arguments):
    is_marked = arguments[0] == "--marked"
    folder, *headers = arguments[1:] if is_marked else arguments
    status = 0 if headers else 1
    for header in headers:
        with open(f"{folder}/{header}", encoding="utf-8") as file:
            text = file.read()
        lines = text.split("\n")
        marked = [n + 1 for n, line in enumerate(lines) if line.endswith("// found")]
        found = faults(text)
        if is_marked and (found != marked or not marked):
            print(f"{header}: marked are the lines {marked}, found {found}")
            status = 1
        if not is_marked:
            for number in found:
                print(f"{header}:{number}: a container of the standard library in a private part: "
                      f"{lines[number - 1].strip()}")
                status = 1
    if status == 0:
        print(f"{len(headers)} headers have no container in a private part")
    return status


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
