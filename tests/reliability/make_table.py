"""Writes the results of the fault sweeps into the table of docs/reliability.md.

usage: make_table.py RESULTS DOCUMENT

RESULTS is the file that the tests write if VEX2_SWEEP_RESULTS is set: one JSON object per line. Only full
sweeps count; sweeps of the same name are added up. Every promise must be in the first table of DOCUMENT,
which determines the order. The exit code is 1 if a promise was broken.
"""

import collections
import json
import pathlib
import re
import sys

BEGIN = "<!-- sweeps: written by tests/reliability/make_table.py -->"
COUNTS = ("points", "states", "bad", "leftOut")
END = "<!-- end of sweeps -->"


def sums(lines):
    rows = collections.OrderedDict()
    for line in filter(None, map(str.strip, lines)):
        result = json.loads(line)
        if not result["full"]:
            continue
        row = rows.setdefault((result["promise"], result["sweep"]), [0] * len(COUNTS))
        for column, key in enumerate(COUNTS):
            row[column] += result[key]
    return rows


def in_order(rows, promises):
    unknown = sorted({promise for promise, _ in rows} - set(promises))
    if unknown:
        sys.exit("the document makes no such promise: " + "; ".join(unknown))
    return dict(sorted(rows.items(), key=lambda row: (promises.index(row[0][0]), row[0][1])))


def table(rows):
    lines = ["| Fault | What was tried | Points | States looked at | Bad | Left out |",
             "|---|---|--:|--:|--:|--:|"]
    for (promise, sweep), counts in rows.items():
        numbers = " | ".join(f"{count:,}" for count in counts)
        lines.append(f"| {promise} | {sweep} | {numbers} |")
    return "\n".join(lines)


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    rows = sums(pathlib.Path(sys.argv[1]).read_text().splitlines())
    if not rows:
        sys.exit(f"{sys.argv[1]}: contains no full sweep; set VEX2_FULL_SWEEPS=1 for the tests")
    document = pathlib.Path(sys.argv[2])
    before, rest = document.read_text().split(BEGIN)
    rows = in_order(rows, re.findall(r"^\| ([^|]+) \|", before, re.MULTILINE))
    document.write_text(f"{before}{BEGIN}\n{table(rows)}\n{END}{rest.split(END)[1]}")
    return 1 if any(counts[COUNTS.index("bad")] for counts in rows.values()) else 0


if __name__ == "__main__":
    sys.exit(main())
