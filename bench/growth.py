#!/usr/bin/env python3
"""growth.py IN.csv OUT.svg: draws what vex2_growth measured."""

import csv
import sys

import matplotlib

matplotlib.use("svg")
matplotlib.rcParams["svg.hashsalt"] = "growth"  # the same picture from the same numbers
import matplotlib.pyplot as plt  # noqa: E402


def main() -> None:
    with open(sys.argv[1], encoding="utf-8") as file:
        rows = list(csv.DictReader(file))
    questions = {}
    for row in rows:
        questions.setdefault((row["question"], row["unit"], row["exponent"]), []).append(
            (int(row["size"]), float(row["seconds"]) * 1e3)
        )
    figure, axes = plt.subplots(2, 3, figsize=(10, 6), layout="constrained")
    for axis, ((question, unit, exponent), points) in zip(axes.flat, questions.items()):
        sizes, times = zip(*points)
        axis.loglog(sizes, times, "o-", color="#0072B2")
        axis.set_title(f"{question}\nexponent {exponent}", fontsize=9)
        axis.set_xlabel(unit)
        axis.set_ylabel("ms")
        axis.set_xticks(sizes, labels=[str(size) for size in sizes])
        axis.minorticks_off()
        middle = (min(times) * max(times)) ** 0.5
        span = max((max(times) / min(times)) ** 0.5 * 1.2, 8)
        axis.set_ylim(middle / span, middle * span)
        axis.grid(True, color="#dddddd", linewidth=0.5)
    figure.savefig(sys.argv[2], metadata={"Date": None})


if __name__ == "__main__":
    main()
